# Runs Doxygen for the target docs and fails on any warning it wrote.
#
#   cmake -DDOXYGEN=<doxygen> -DDOXYFILE=<Doxyfile> -DWARN_LOG=<log> -DHTML_INDEX=<index.html>
#         -P RunDoxygen.cmake
#
# Doxygen writes its warnings to WARN_LOG. Where it can, it also ends with a
# non-zero status after warning (FAIL_ON_WARNINGS); either one fails the target,
# and the warnings are printed so that the failing build log names them.

foreach(var DOXYGEN DOXYFILE WARN_LOG HTML_INDEX)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "RunDoxygen.cmake: ${var} is not set")
  endif()
endforeach()

file(REMOVE "${WARN_LOG}")
execute_process(COMMAND "${DOXYGEN}" "${DOXYFILE}"
  RESULT_VARIABLE status
  OUTPUT_VARIABLE output
  ERROR_VARIABLE errors)

set(warnings "")
if(EXISTS "${WARN_LOG}")
  file(READ "${WARN_LOG}" warnings)
  string(STRIP "${warnings}" warnings)
endif()
string(STRIP "${errors}" errors)

if(warnings OR errors OR NOT status EQUAL 0)
  set(report "")
  if(warnings)
    string(APPEND report "${warnings}\n")
  endif()
  if(errors)
    string(APPEND report "${errors}\n")
  endif()
  message(FATAL_ERROR
    "The API reference has warnings (exit status ${status}). Every public declaration needs a "
    "doc comment, and every documented parameter must exist:\n${report}")
endif()

if(NOT EXISTS "${HTML_INDEX}")
  message(FATAL_ERROR "Doxygen reported no warning but wrote no ${HTML_INDEX}")
endif()
message(STATUS "API reference: ${HTML_INDEX}")
