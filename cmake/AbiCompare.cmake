# Describes the built library's public ABI with abidw and compares it with, or
# writes it as, the committed baseline.
#
#   cmake -DMODE=check|write -DLIBRARY=<built .so> -DBASELINE=<abi/*.abi>
#         -DHEADERS_DIR=<include> -DSUPPRESSIONS=<abi/public-interface.suppr>
#         -DWORK_DIR=<scratch dir> -DSTRIP_PREFIXES=<dir>|<dir>... [-DBUILD_TYPE=<config>]
#         -P AbiCompare.cmake
#
# check: fails when the baseline is missing, when the built SONAME is not the
#        baseline's (the SOVERSION moved but the baseline was not rewritten), or
#        when abidiff finds a change of the public ABI other than additions
#        while the SONAME stayed. Prints "XOLA_ABI_SKIPPED" (the test counts it
#        as skipped) for a library without debug information.
# write: writes the baseline from a RelWithDebInfo build. It refuses to replace
#        a baseline of the same SONAME by an incompatible one: such a change
#        needs a new SOVERSION first. XOLA_ABI_FORCE=1 in the environment
#        overrides that, for a difference known to be harmless.
cmake_minimum_required(VERSION 3.16)

foreach(var MODE LIBRARY BASELINE HEADERS_DIR SUPPRESSIONS WORK_DIR)
  if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
    message(FATAL_ERROR "AbiCompare.cmake: ${var} is not set")
  endif()
endforeach()
if(NOT MODE MATCHES "^(check|write)$")
  message(FATAL_ERROR "AbiCompare.cmake: MODE must be check or write, not '${MODE}'")
endif()

# Found here rather than at configure time, so that installing the tools later
# needs no new configure run.
find_program(ABIDW abidw)
find_program(ABIDIFF abidiff)
if(NOT ABIDW OR NOT ABIDIFF)
  message(FATAL_ERROR "abidw and abidiff are missing: install abigail-tools (bash scripts/deps.sh)")
endif()

get_filename_component(baseline_name "${BASELINE}" NAME)
file(MAKE_DIRECTORY "${WORK_DIR}")
set(raw "${WORK_DIR}/raw.abi")
set(current "${WORK_DIR}/${baseline_name}")

# --headers-dir with --drop-private-types keeps only the types the installed
# headers define (and what they use); the suppressions keep only the public
# classes' symbols. Locations, the compilation directory and the corpus path
# are left out: they say where the tree was built, not what the interface is.
# Hashed type ids stay the same when unrelated types come and go, which keeps
# the diff of a rewritten baseline small.
execute_process(
  COMMAND "${ABIDW}" --headers-dir "${HEADERS_DIR}" --drop-private-types
          --suppressions "${SUPPRESSIONS}"
          --no-show-locs --no-comp-dir-path --no-corpus-path --type-id-style hash
          --out-file "${raw}" "${LIBRARY}"
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "abidw failed (${rc}) on ${LIBRARY}\n${out}${err}")
endif()

# What is left of the build path is the name of each translation unit; those
# names are made relative to the build or source directory (STRIP_PREFIXES,
# the deeper first).
file(READ "${raw}" abi)
string(REPLACE "|" ";" prefixes "${STRIP_PREFIXES}")
foreach(prefix IN LISTS prefixes)
  if(prefix STREQUAL "")
    continue()
  endif()
  string(REGEX REPLACE "/+$" "" prefix "${prefix}")
  string(REPLACE "path='${prefix}/" "path='" abi "${abi}")
endforeach()
file(WRITE "${current}" "${abi}")

if(NOT abi MATCHES "<abi-instr ")
  set(why "${LIBRARY} has no debug information, so its ABI cannot be described (build RelWithDebInfo or Debug)")
  if(MODE STREQUAL "check")
    message("XOLA_ABI_SKIPPED: ${why}")
    return()
  endif()
  message(FATAL_ERROR "${why}")
endif()

function(soname_of text out)
  if(text MATCHES "<abi-corpus [^>]*soname='([^']*)'")
    set(${out} "${CMAKE_MATCH_1}" PARENT_SCOPE)
  else()
    set(${out} "" PARENT_SCOPE)
  endif()
endfunction()
soname_of("${abi}" built_soname)

# abidiff's exit status is a bit set: 1 error, 2 usage error, 4 ABI change,
# 8 incompatible change. Public functions added since the baseline are not
# counted (--no-added-syms): hosts built against the baseline still load.
function(compare out_rc out_report)
  execute_process(
    COMMAND "${ABIDIFF}" --no-added-syms --suppressions "${SUPPRESSIONS}" "${BASELINE}" "${current}"
    RESULT_VARIABLE diff_rc OUTPUT_VARIABLE diff_out ERROR_VARIABLE diff_err)
  if(NOT diff_rc MATCHES "^[0-9]+$")
    message(FATAL_ERROR "abidiff did not run: ${diff_rc}\n${diff_err}")
  endif()
  math(EXPR tool_error "${diff_rc} & 3")
  if(tool_error)
    message("${diff_out}${diff_err}")
    message(FATAL_ERROR "abidiff failed (${diff_rc}) comparing ${BASELINE} with ${current}")
  endif()
  math(EXPR changed "${diff_rc} & 12")
  set(${out_rc} ${changed} PARENT_SCOPE)
  set(${out_report} "${diff_out}${diff_err}" PARENT_SCOPE)
endfunction()

set(regenerate "bash scripts/abi-baseline.sh")

if(MODE STREQUAL "check")
  if(NOT EXISTS "${BASELINE}")
    message(FATAL_ERROR "No ABI baseline ${BASELINE}. Write it with: ${regenerate}")
  endif()
  file(READ "${BASELINE}" baseline_abi)
  soname_of("${baseline_abi}" baseline_soname)
  message(STATUS "Built ${built_soname}; baseline ${baseline_name} describes ${baseline_soname}")
  if(NOT built_soname STREQUAL baseline_soname)
    message(FATAL_ERROR
      "The library is now ${built_soname} but ${baseline_name} still describes ${baseline_soname}.\n"
      "The SOVERSION changed without the baseline: rewrite it (${regenerate}) and commit it with the SOVERSION change.")
  endif()
  compare(changed report)
  if(changed)
    message("abidiff ${baseline_name} <built ${built_soname}>:\n${report}")
    message(FATAL_ERROR
      "The public ABI of ${built_soname} differs from ${baseline_name} (abidiff status bits ${changed}); "
      "hosts built against ${built_soname} would break. Either keep the installed classes' layout, "
      "virtual functions and signatures as they were, or make it a new ABI: raise SOVERSION in "
      "CMakeLists.txt and rewrite the baselines (${regenerate}) in the same commit. See docs/ABI.md.")
  endif()
  # Additions pass; they are only guarded against later removal once the
  # baseline is rewritten.
  execute_process(
    COMMAND "${ABIDIFF}" --suppressions "${SUPPRESSIONS}" "${BASELINE}" "${current}"
    RESULT_VARIABLE all_rc OUTPUT_VARIABLE all_out ERROR_VARIABLE all_err)
  if(NOT all_rc EQUAL 0)
    message("Compatible additions since ${baseline_name} (rewrite the baseline to guard them):\n${all_out}${all_err}")
  endif()
  message(STATUS "The public ABI matches ${baseline_name}")
  return()
endif()

# MODE write
if(DEFINED BUILD_TYPE AND NOT BUILD_TYPE STREQUAL "RelWithDebInfo")
  message(FATAL_ERROR "Baselines are written from RelWithDebInfo builds; this one is '${BUILD_TYPE}'. Use ${regenerate}.")
endif()
if(EXISTS "${BASELINE}")
  file(READ "${BASELINE}" baseline_abi)
  soname_of("${baseline_abi}" baseline_soname)
  if(baseline_soname STREQUAL built_soname)
    compare(changed report)
    if(changed)
      if("$ENV{XOLA_ABI_FORCE}" STREQUAL "1")
        message(WARNING "XOLA_ABI_FORCE=1: rewriting ${baseline_name} although ${built_soname} changed its ABI:\n${report}")
      else()
        message("abidiff ${baseline_name} <built ${built_soname}>:\n${report}")
        message(FATAL_ERROR
          "${built_soname} is not compatible with ${baseline_name}, and its SONAME did not change. "
          "Raise SOVERSION in CMakeLists.txt first, then write the baseline again. See docs/ABI.md.")
      endif()
    endif()
  endif()
  if(baseline_abi STREQUAL abi)
    message(STATUS "${BASELINE} is up to date (${built_soname})")
    return()
  endif()
endif()
file(WRITE "${BASELINE}" "${abi}")
message(STATUS "Wrote ${BASELINE} (${built_soname})")
