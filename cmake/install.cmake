# What `cmake --install` puts where, and the Debian package that `./dev package` makes of it.
#
# The places are those at which Debian's shells, vim, CMake and man look. Each part is a component,
# so that one may be installed alone: cmake --install build --component completions.

set(CMAKE_INSTALL_DOCDIR share/doc/hxzirpa CACHE PATH "Documents and examples")
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# ---- Program ------------------------------------------------------------------------------------

install(TARGETS HXzirpa RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)

if(TARGET companion_program)
  install(TARGETS companion_program RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
endif()

# ---- Man pages and documents --------------------------------------------------------------------

# Man pages and the changelog are compressed, as Debian asks for, without a name or time in them.
find_program(HXZIRPA_GZIP gzip REQUIRED)
set(compressed_files "")
function(install_compressed source name destination component)
  set(copy ${CMAKE_BINARY_DIR}/install/${name})
  set(result ${copy}.gz)
  add_custom_command(
    OUTPUT ${result}
    COMMAND ${CMAKE_COMMAND} -E copy ${source} ${copy}
    COMMAND ${HXZIRPA_GZIP} -9nf ${copy}
    DEPENDS ${source}
    COMMENT "Compressing ${name}"
    VERBATIM)
  install(FILES ${result} DESTINATION ${destination} COMPONENT ${component})
  list(APPEND compressed_files ${result})
  set(compressed_files ${compressed_files} PARENT_SCOPE)
endfunction()

foreach(section IN ITEMS 1 5)
  install_compressed(${CMAKE_SOURCE_DIR}/man/HXzirpa.${section} HXzirpa.${section}
                     ${CMAKE_INSTALL_MANDIR}/man${section} man)
endforeach()
if(TARGET companion_program)
  install_compressed(${CMAKE_SOURCE_DIR}/man/zirpa.1 zirpa.1 ${CMAKE_INSTALL_MANDIR}/man1 man)
  install(FILES completions/zirpa
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT completions)
  install(FILES completions/_zirpa
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT completions)
  install(FILES completions/zirpa.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT completions)
  install(FILES zirpa/diagnostics.schema.json zirpa/project.schema.json
          DESTINATION ${CMAKE_INSTALL_DOCDIR}/zirpa COMPONENT doc)
endif()
install_compressed(${CMAKE_SOURCE_DIR}/packaging/changelog changelog
                   ${CMAKE_INSTALL_DOCDIR} doc)
add_custom_target(compressed_files ALL DEPENDS ${compressed_files})

# As in the source tree, so that the links between the documents lead somewhere.
install(FILES README.md CONTRIBUTING.md packaging/copyright
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)
install(DIRECTORY docs editors DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc
        FILES_MATCHING PATTERN "*.md" PATTERN "docs/pictures/*"
        REGEX "/(ale_linters|compiler|ftdetect|ftplugin|lua|snippets|src|syntax|syntaxes)$" EXCLUDE)
install(FILES docs/flow.svg DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT doc)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT doc
        FILES_MATCHING PATTERN "*.szirpa" PATTERN "*.c" PATTERN CMakeLists.txt)

# ---- Shells, editors and CMake ------------------------------------------------------------------

install(FILES completions/HXzirpa
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT completions)
install(FILES completions/_HXzirpa
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT completions)
install(FILES completions/HXzirpa.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT completions)

install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles
        COMPONENT editors FILES_MATCHING PATTERN "*.vim")
# Debian's Neovim does not look where Vim does. The linter is of use to a plugin for Vim only.
install(DIRECTORY editors/vim/ editors/neovim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/nvim/site
        COMPONENT editors FILES_MATCHING PATTERN "*.vim" PATTERN "*.lua"
        PATTERN ale_linters EXCLUDE)
install(FILES editors/emacs/szirpa-mode.el
        DESTINATION ${CMAKE_INSTALL_DATADIR}/emacs/site-lisp COMPONENT editors)

set(cmake_module_directory ${CMAKE_INSTALL_DATADIR}/cmake/HXzirpa)
configure_package_config_file(
  cmake/HXzirpaConfig.cmake.in ${CMAKE_BINARY_DIR}/install/HXzirpaConfig.cmake
  INSTALL_DESTINATION ${cmake_module_directory}
  PATH_VARS CMAKE_INSTALL_BINDIR
  NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(
  ${CMAKE_BINARY_DIR}/install/HXzirpaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES cmake/HXzirpaProgram.cmake
              ${CMAKE_BINARY_DIR}/install/HXzirpaConfig.cmake
              ${CMAKE_BINARY_DIR}/install/HXzirpaConfigVersion.cmake
        DESTINATION ${cmake_module_directory} COMPONENT cmake)

# ---- The Debian package -------------------------------------------------------------------------

# This part is of use within the package only.
install(FILES packaging/lintian-overrides RENAME hxzirpa
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_COMPONENTS_ALL program man doc completions editors cmake debian)
set(CPACK_PACKAGE_NAME hxzirpa)
set(CPACK_PACKAGE_CONTACT "HXzirpa authors <authors@hxzirpa.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "absolute cross-assembler for the ZIRPA")
set(CPACK_PACKAGE_DESCRIPTION
"HXzirpa assembles programs for the ZIRPA, an 8-bit processor with 8-bit
addresses. It writes Motorola S-records and a script for the simulator, and on
request a listing, the bytes as a C array, the symbol table and records for a
debugger. zirpa does the same with diagnostics that point at what is wrong.
.
The package holds the manual, example programs, completions for bash, zsh and
fish, support for vim, neovim and emacs, and a CMake module as well.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, binutils, cmake")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(NOT HXZIRPA_STATIC)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/repack.cmake)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
include(CPack)
