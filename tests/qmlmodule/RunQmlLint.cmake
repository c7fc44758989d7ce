# Runs qmllint over QML files with a QML module on the import path and fails
# on any warning about that module: its import, or one of the types its type
# information describes (named in the message).
#
# cmake -DQMLLINT=<qmllint> -DIMPORT_DIR=<dir> -DURI=<module uri> -DTYPE_NAMES=<a,b,...> -DFILES=<f1|f2|...>
#       [-DEXPECT_WARNING=<text>] -P RunQmlLint.cmake
#
# With EXPECT_WARNING the script checks itself: the files misuse the module on
# purpose, the module must still import cleanly, and a warning about one of its
# types must contain the text.
cmake_minimum_required(VERSION 3.16)
foreach(var QMLLINT IMPORT_DIR URI TYPE_NAMES FILES)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "${var} is not set")
  endif()
endforeach()
string(REPLACE "|" ";" files "${FILES}")
string(REPLACE "," ";" type_names "${TYPE_NAMES}")

execute_process(COMMAND "${QMLLINT}" -I "${IMPORT_DIR}" ${files}
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(output "${out}${err}")
# 0: nothing to say; 255: warnings, sorted out below. Anything else is a failure of the tool.
if(NOT rc EQUAL 0 AND NOT rc EQUAL 255)
  message(FATAL_ERROR "qmllint failed (${rc}):\n${output}")
endif()

string(REPLACE ";" "<semicolon>" masked "${output}")
string(REPLACE "\n" ";" lines "${masked}")
string(REPLACE "." "\\." uri_pattern "${URI}")
set(about_module "")
set(import_failures "")
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^Warning: ")
    continue()
  endif()
  set(hit FALSE)
  if(line MATCHES "${uri_pattern}")
    set(hit TRUE)
    list(APPEND import_failures "${line}")
  endif()
  foreach(name IN LISTS type_names)
    if(line MATCHES "(^|[^A-Za-z0-9_])${name}([^A-Za-z0-9_]|$)")
      set(hit TRUE)
    endif()
  endforeach()
  if(hit)
    list(APPEND about_module "${line}")
  endif()
endforeach()

if(DEFINED EXPECT_WARNING)
  if(import_failures)
    message(FATAL_ERROR "The module did not import cleanly:\n${output}")
  endif()
  string(FIND "${about_module}" "${EXPECT_WARNING}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "No warning about the module's types contains '${EXPECT_WARNING}':\n${output}")
  endif()
  message(STATUS "qmllint found the misuse of the module's types")
  return()
endif()

if(about_module)
  string(REPLACE ";" "\n  " shown "${about_module}")
  string(REPLACE "<semicolon>" ";" shown "${shown}")
  message(FATAL_ERROR "qmllint warns about the module:\n  ${shown}\n\nFull output:\n${output}")
endif()
message(STATUS "qmllint has no warning about ${URI}")
