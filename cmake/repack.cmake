# Packs the Debian package once more with the time of its changelog, so that the same sources always give
# the same bytes: cpack leaves the time of the build in it.

set(run COMMAND_ERROR_IS_FATAL ANY COMMAND)
set(contents ${CPACK_TEMPORARY_DIRECTORY}/contents)
execute_process(${run} dpkg-parsechangelog --show-field Timestamp
                       --file ${CMAKE_CURRENT_LIST_DIR}/../packaging/changelog
                OUTPUT_VARIABLE time OUTPUT_STRIP_TRAILING_WHITESPACE)
set(ENV{SOURCE_DATE_EPOCH} ${time})
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  file(REMOVE_RECURSE ${contents})
  execute_process(${run} dpkg-deb --raw-extract ${package} ${contents})
  execute_process(${run} find ${contents} -exec touch --no-dereference --date=@${time} {} +)
  execute_process(${run} dpkg-deb --root-owner-group --build ${contents} ${package} OUTPUT_QUIET)
endforeach()
