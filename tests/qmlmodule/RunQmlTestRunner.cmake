# Runs qmltestrunner over one QML TestCase file and fails when the run logs
# anything. QtTest prints each message a test logs as a line of its own
# (QWARN, QDEBUG...), and Qt prints whatever is logged outside a test function
# as it is, so every line that is not part of the runner's own report counts.
#
# cmake -DRUNNER=<qmltestrunner> -DINPUT=<tst_x.qml> -DWORK_DIR=<dir> [-DEXPECT_LOGGED=<text>] -P RunQmlTestRunner.cmake
#
# With EXPECT_LOGGED the script checks itself: the tests must pass and the
# check must find a logged line containing the text.
cmake_minimum_required(VERSION 3.16)
foreach(var RUNNER INPUT WORK_DIR)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "${var} is not set")
  endif()
endforeach()

# Qt warns when it has no runtime directory of its own; give it one, private
# as Qt requires, so that only what the tests do can be logged.
set(runtime_dir "${WORK_DIR}/runtime")
file(MAKE_DIRECTORY "${runtime_dir}")
execute_process(COMMAND chmod 0700 "${runtime_dir}")
set(ENV{XDG_RUNTIME_DIR} "${runtime_dir}")

execute_process(COMMAND "${RUNNER}" -input "${INPUT}"
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(output "${out}${err}")
message("${output}")

# One entry per line; semicolons would split lines further, so they are masked.
string(REPLACE ";" "<semicolon>" masked "${output}")
string(REPLACE "\n" ";" lines "${masked}")
set(logged "")
foreach(line IN LISTS lines)
  if(line STREQUAL ""
     OR line MATCHES "^\\*+ (Start|Finished) testing of "
     OR line MATCHES "^Config: Using QtTest library "
     OR line MATCHES "^PASS   : "
     OR line MATCHES "^Totals: ")
    continue()
  endif()
  string(REPLACE "<semicolon>" ";" line "${line}")
  list(APPEND logged "${line}")
endforeach()

set(passed FALSE)
if(rc EQUAL 0 AND output MATCHES "Totals: [0-9]+ passed, 0 failed")
  set(passed TRUE)
endif()

if(DEFINED EXPECT_LOGGED)
  if(NOT passed)
    message(FATAL_ERROR "The tests of ${INPUT} did not pass (${rc})")
  endif()
  string(FIND "${logged}" "${EXPECT_LOGGED}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "The check missed a logged line containing '${EXPECT_LOGGED}'")
  endif()
  message(STATUS "The check found what ${INPUT} logged")
  return()
endif()

if(NOT passed)
  message(FATAL_ERROR "qmltestrunner failed (${rc}) on ${INPUT}")
endif()
if(logged)
  string(REPLACE ";" "\n  " shown "${logged}")
  message(FATAL_ERROR "The run logged:\n  ${shown}")
endif()
