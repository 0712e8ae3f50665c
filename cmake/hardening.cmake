# What makes a fault of the program hard to exploit, and stops it early: a place in memory that is
# chosen anew at each start, guarded return addresses, checked library calls and containers, marked
# targets of indirect jumps, and no memory that is both written and executed.
#
# Only optimised builds are hardened, as the checks of the C library need that; the sanitizers check
# more, in ways of their own.

set(hardened 0)
if(HXZIRPA_HARDEN AND NOT HXZIRPA_SANITIZE)
  set(hardened $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
endif()

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)

# Level 3 of the C library's checks would take 5 % more instructions.
set(compile_options -fPIE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS)

# The assertions of libc++ up to 14; later ones refuse the name.
set(CMAKE_REQUIRED_DEFINITIONS -D_LIBCPP_DEBUG=0)
check_cxx_source_compiles("#include <string_view>
int main() { return 0; }" HXZIRPA_HAS_LIBCPP_DEBUG)
unset(CMAKE_REQUIRED_DEFINITIONS)
list(APPEND compile_options
     -D$<IF:$<BOOL:${HXZIRPA_HAS_LIBCPP_DEBUG}>,_LIBCPP_DEBUG=0,_LIBCPP_ENABLE_ASSERTIONS=1>)

# Jumps are guarded by the second flag on x86-64, by the third on aarch64; clang takes the other
# processor's with a warning.
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag IN ITEMS -fstack-protector-strong -fcf-protection -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "HXZIRPA_HAS${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    list(APPEND compile_options ${flag})
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)

# Constant tables are kept out of executable memory by separate-code; what has to be relocated at the
# start is read-only from then on.
set(link_options $<IF:$<BOOL:${HXZIRPA_STATIC}>,-static-pie,-pie>)
set(segment_options LINKER:-z,relro,-z,now,-z,noexecstack,-z,separate-code)
check_linker_flag(CXX ${segment_options} HXZIRPA_HAS_SEGMENT_OPTIONS)
if(HXZIRPA_HAS_SEGMENT_OPTIONS)
  list(APPEND link_options ${segment_options})
endif()

add_library(hardening INTERFACE)
target_compile_options(hardening INTERFACE $<${hardened}:${compile_options}>)
target_link_options(hardening INTERFACE $<${hardened}:${link_options}>)
