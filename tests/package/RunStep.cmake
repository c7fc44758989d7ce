# run(<command...>): runs one step of a package test and stops the test with
# the step's output when it fails.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "Failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  message(STATUS "${out}")
endfunction()
