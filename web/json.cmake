# The library for JSON, which is headers only: its own target would bring the headers of this
# machine's C library with it.
find_path(json_headers nlohmann/json.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
file(CREATE_LINK ${json_headers}/nlohmann ${CMAKE_BINARY_DIR}/include/nlohmann SYMBOLIC)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED GLOBAL)
target_include_directories(nlohmann_json::nlohmann_json INTERFACE ${CMAKE_BINARY_DIR}/include)
set(nlohmann_json_FOUND TRUE)
