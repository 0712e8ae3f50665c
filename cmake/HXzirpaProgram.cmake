# Assembles ZIRPA sources as targets of a CMake build. The reference is docs/cmake.md.
#
#   add_hxzirpa_program(name SOURCE file [DEFINES symbol...] [NOCASE]
#                       [LISTING] [SYMBOLS] [CARRAY] [DEBUG] [BIN] [HEX] [DIAGNOSTICS])
#
# The program writes its outputs into the working directory, under names that it derives from the
# source's. So every target has a working directory of its own, <name>.hxzirpa below the current
# binary directory: many targets assemble at the same time, also from one source. The paths of the
# outputs are properties of the target: HXZIRPA_SRECORD, HXZIRPA_SCRIPT, HXZIRPA_LISTING,
# HXZIRPA_CARRAY, HXZIRPA_BIN, HXZIRPA_HEX; that of the directory is HXZIRPA_DIRECTORY.
#
# HXZIRPA_EXECUTABLE is the program, HXZIRPA_OBJCOPY what makes BIN and HEX, HXZIRPA_COMPANION the
# program zirpa, which DIAGNOSTICS asks for; all are looked for unless they are set.
#
# At build time CMake runs this file again as a script: see _hxzirpa_assemble.

cmake_policy(VERSION 3.25)

# ---- At build time ------------------------------------------------------------------------------

# Runs PROGRAM with OPTIONS on SOURCE; it must leave all FILES. CONVERTED are the files that will be
# made of those.
#
# The status alone does not tell a failure: it is the number of errors modulo 256. A run with errors
# leaves no S-record file, but one of an earlier run may still be there. A listing that could not be
# created is not counted as an error. Hence all files go first, and all are looked for afterwards.
# Of a failed run only the listing stays, since it shows the messages in their places.
function(_hxzirpa_assemble)
  file(REMOVE ${FILES} ${CONVERTED})
  # Without further words the program shares the output streams, so its messages stay as they are.
  execute_process(COMMAND "${PROGRAM}" ${OPTIONS} "${SOURCE}" RESULT_VARIABLE status)
  set(missing "")
  foreach(file IN LISTS FILES)
    if(NOT EXISTS "${file}" OR IS_DIRECTORY "${file}")
      cmake_path(GET file FILENAME file_name)
      list(APPEND missing ${file_name})
    endif()
  endforeach()
  if(status STREQUAL "0" AND missing STREQUAL "")
    return()
  endif()

  list(FILTER FILES EXCLUDE REGEX "\\.lst$")
  file(REMOVE ${FILES})
  set(result "ended with status ${status}")
  if(NOT missing STREQUAL "")
    list(JOIN missing ", " missing)
    string(APPEND result " and left no ${missing}")
  endif()
  set(program_name HXzirpa)
  if("${OPTIONS}" MATCHES "^build;")
    set(program_name zirpa)
  endif()
  message(FATAL_ERROR "${program_name} ${result}. The source:\n  ${SOURCE}")
endfunction()

if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  _hxzirpa_assemble()
  return()
endif()

include_guard(GLOBAL)

# ---- Arguments ----------------------------------------------------------------------------------

function(_hxzirpa_refuse name text)
  message(FATAL_ERROR "add_hxzirpa_program(${name}): ${text}")
endfunction()

function(_hxzirpa_check_name name)
  if(NOT name MATCHES "^[A-Za-z0-9_.+-]+$")
    _hxzirpa_refuse("${name}" "a target's name is made of letters, digits and _ . + - only")
  endif()
  if(TARGET ${name})
    _hxzirpa_refuse(${name} "there is a target of this name already")
  endif()
endfunction()

function(_hxzirpa_check_defines name)
  foreach(symbol IN LISTS ARGN)
    if(symbol MATCHES "=")
      _hxzirpa_refuse(${name} "DEFINES '${symbol}': a symbol cannot be given a value here; test \
the symbol with #ifdef and leave the value to #define")
    elseif(NOT symbol MATCHES "^[A-Za-z_][A-Za-z0-9_.$]*$")
      _hxzirpa_refuse(${name} "DEFINES '${symbol}': this is no symbol of the assembler")
    endif()
  endforeach()
endfunction()

# The source's full path. A file that the build makes need not exist yet.
function(_hxzirpa_find_source name given result)
  # A backslash separates directories for the program, which names its outputs accordingly.
  if(given MATCHES ";" OR given MATCHES "\\\\")
    _hxzirpa_refuse(${name} "SOURCE '${given}': the path can hold neither ';' nor '\\'")
  endif()
  cmake_path(ABSOLUTE_PATH given BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE
             OUTPUT_VARIABLE source)
  get_source_file_property(is_generated "${source}" GENERATED)
  if(IS_DIRECTORY "${source}" OR NOT (EXISTS "${source}" OR is_generated))
    _hxzirpa_refuse(${name} "SOURCE '${given}': there is no file\n  ${source}")
  endif()
  set(${result} "${source}" PARENT_SCOPE)
endfunction()

# ---- Tools --------------------------------------------------------------------------------------

function(_hxzirpa_need_program name)
  find_program(HXZIRPA_EXECUTABLE HXzirpa NO_CMAKE_FIND_ROOT_PATH
               DOC "The assembler for the ZIRPA")
  if(NOT HXZIRPA_EXECUTABLE)
    _hxzirpa_refuse(${name} "the program HXzirpa was not found; install it, or set \
HXZIRPA_EXECUTABLE to its path")
  elseif(NOT EXISTS "${HXZIRPA_EXECUTABLE}" OR IS_DIRECTORY "${HXZIRPA_EXECUTABLE}")
    _hxzirpa_refuse(${name} "HXZIRPA_EXECUTABLE names no file\n  ${HXZIRPA_EXECUTABLE}")
  endif()
endfunction()

# Sets program and command, what the words of the command line begin with. Where zirpa is missing, the
# assembler itself says less about the same faults.
function(_hxzirpa_choose_program name)
  set(program "${HXZIRPA_EXECUTABLE}")
  set(command "")
  if(arg_DIAGNOSTICS)
    cmake_path(GET HXZIRPA_EXECUTABLE PARENT_PATH directory)
    find_program(HXZIRPA_COMPANION zirpa HINTS "${directory}" NO_CMAKE_FIND_ROOT_PATH
                 DOC "What assembles with diagnostics")
    if(HXZIRPA_COMPANION)
      set(program "${HXZIRPA_COMPANION}")
      set(command build)
    else()
      message(STATUS "add_hxzirpa_program(${name}): zirpa was not found, so DIAGNOSTICS has no effect")
    endif()
  endif()
  return(PROPAGATE program command)
endfunction()

# Some programs of that name, like that of LLVM, do not read S-records.
function(_hxzirpa_validate_objcopy result candidate)
  execute_process(COMMAND "${candidate}" --info OUTPUT_VARIABLE formats ERROR_QUIET)
  if(NOT formats MATCHES "(^|\n)srec\n")
    set(${result} FALSE PARENT_SCOPE)
  endif()
endfunction()

function(_hxzirpa_need_objcopy name)
  find_program(HXZIRPA_OBJCOPY NAMES ${CMAKE_OBJCOPY} objcopy NO_CMAKE_FIND_ROOT_PATH
               VALIDATOR _hxzirpa_validate_objcopy DOC "An objcopy that reads S-records")
  if(NOT HXZIRPA_OBJCOPY)
    _hxzirpa_refuse(${name} "no objcopy that reads S-records was found, which BIN and HEX need; \
install GNU binutils, or set HXZIRPA_OBJCOPY to its path")
  endif()
endfunction()

# ---- The function -------------------------------------------------------------------------------

# The functions of this part read the arguments, arg_..., of the one that calls them.

function(_hxzirpa_command_options result)
  set(options -w)
  if(arg_LISTING OR arg_CARRAY)
    list(APPEND options -L)
  endif()
  if(arg_CARRAY)
    list(APPEND options -A) # without -L the array would stay empty
  endif()
  if(arg_SYMBOLS)
    list(APPEND options -S)
  endif()
  if(arg_DEBUG)
    list(APPEND options -g)
  endif()
  if(arg_NOCASE)
    list(APPEND options -C nocase) # has no effect on symbols that are defined ahead of it
  endif()
  foreach(symbol IN LISTS arg_DEFINES)
    list(APPEND options -D ${symbol})
  endforeach()
  set(${result} ${options} PARENT_SCOPE)
endfunction()

# Adds to a list of files the one that has this suffix, and to the properties its path.
macro(_hxzirpa_add_file files kind suffix)
  list(APPEND ${files} "${base}${suffix}")
  list(APPEND properties HXZIRPA_${kind} "${base}${suffix}")
endmacro()

# Sets assembled and converted, the files; conversions, the commands; and properties.
function(_hxzirpa_outputs base)
  # The project may have variables of these names.
  foreach(list IN ITEMS assembled converted conversions properties)
    set(${list} "")
  endforeach()
  _hxzirpa_add_file(assembled SRECORD .s19)
  _hxzirpa_add_file(assembled SCRIPT .fmem)
  if(arg_LISTING OR arg_CARRAY)
    _hxzirpa_add_file(assembled LISTING .lst)
  endif()
  if(arg_CARRAY)
    _hxzirpa_add_file(assembled CARRAY _cout.c)
  endif()
  set(from_records COMMAND "${HXZIRPA_OBJCOPY}" -I srec)
  if(arg_BIN)
    _hxzirpa_add_file(converted BIN .bin)
    list(APPEND conversions ${from_records} -O binary "${base}.s19" "${base}.bin")
  endif()
  if(arg_HEX)
    _hxzirpa_add_file(converted HEX .hex)
    list(APPEND conversions ${from_records} -O ihex "${base}.s19" "${base}.hex")
  endif()
  return(PROPAGATE assembled converted conversions properties)
endfunction()

function(add_hxzirpa_program name)
  set(switches NOCASE LISTING SYMBOLS CARRAY DEBUG BIN HEX DIAGNOSTICS)
  cmake_parse_arguments(PARSE_ARGV 1 arg "${switches}" "SOURCE" "DEFINES")
  if(name IN_LIST switches OR name MATCHES "^(SOURCE|DEFINES)$")
    _hxzirpa_refuse(${name} "the name of the target comes first, and is no keyword")
  endif()
  _hxzirpa_check_name("${name}")
  if(DEFINED arg_UNPARSED_ARGUMENTS)
    list(JOIN arg_UNPARSED_ARGUMENTS "', '" unknown)
    _hxzirpa_refuse(${name} "unknown argument '${unknown}'")
  elseif(NOT DEFINED arg_SOURCE)
    _hxzirpa_refuse(${name} "SOURCE and the name of a file are missing")
  endif()
  _hxzirpa_find_source(${name} "${arg_SOURCE}" source)
  _hxzirpa_check_defines(${name} ${arg_DEFINES})
  _hxzirpa_need_program(${name})
  if(arg_BIN OR arg_HEX)
    _hxzirpa_need_objcopy(${name})
  endif()

  set(directory "${CMAKE_CURRENT_BINARY_DIR}/${name}.hxzirpa")
  cmake_path(GET source STEM LAST_ONLY stem)
  _hxzirpa_outputs("${directory}/${stem}")
  if(source IN_LIST assembled OR source IN_LIST converted)
    _hxzirpa_refuse(${name} "the source is among the outputs\n  ${source}")
  endif()
  _hxzirpa_choose_program(${name})
  _hxzirpa_command_options(options)
  list(PREPEND options ${command})
  file(MAKE_DIRECTORY "${directory}")
  add_custom_command(
    OUTPUT ${assembled} ${converted}
    COMMAND "${CMAKE_COMMAND}" "-DPROGRAM=${program}" "-DOPTIONS=${options}"
            "-DSOURCE=${source}" "-DFILES=${assembled}" "-DCONVERTED=${converted}"
            -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
    ${conversions}
    DEPENDS "${source}" "${program}"
    WORKING_DIRECTORY "${directory}"
    COMMENT "Assembling ${name}"
    VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${assembled} ${converted} SOURCES "${source}")
  set_target_properties(${name} PROPERTIES HXZIRPA_DIRECTORY "${directory}" ${properties})
endfunction()
