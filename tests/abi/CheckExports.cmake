# Fails when the shared library exports a symbol that abi/exported-symbols.txt
# does not allow, and lists those symbols grouped by the class or namespace
# they belong to.
#
#   cmake -DLIBRARY=<built .so> -DNM=<nm> -DALLOWED=<abi/exported-symbols.txt> -P CheckExports.cmake
cmake_minimum_required(VERSION 3.16)

foreach(var LIBRARY NM ALLOWED)
  if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
    message(FATAL_ERROR "CheckExports.cmake: ${var} is not set")
  endif()
endforeach()

# The allowed patterns: one regular expression a line; # comments.
file(STRINGS "${ALLOWED}" lines)
set(patterns "")
foreach(line IN LISTS lines)
  string(STRIP "${line}" line)
  if(line STREQUAL "" OR line MATCHES "^#")
    continue()
  endif()
  list(APPEND patterns "${line}")
endforeach()
if(NOT patterns)
  message(FATAL_ERROR "${ALLOWED} allows nothing")
endif()

execute_process(COMMAND "${NM}" -D --defined-only -C "${LIBRARY}"
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${NM} failed (${rc}) on ${LIBRARY}\n${err}")
endif()

# Square brackets (operator[]) would keep CMake from splitting the list at
# the semicolons; they are carried as placeholders until a line is on its own.
string(REPLACE "[" "<XOLA_LSQ>" out "${out}")
string(REPLACE "]" "<XOLA_RSQ>" out "${out}")
string(REPLACE "\n" ";" out "${out}")

set(total 0)
set(groups "")
foreach(line IN LISTS out)
  string(REPLACE "<XOLA_LSQ>" "[" line "${line}")
  string(REPLACE "<XOLA_RSQ>" "]" line "${line}")
  # "<address> <type> <name>"; symbols without an address (versions) have none.
  if(NOT line MATCHES "^[0-9a-fA-F]* *([A-Za-z]) (.+)$")
    continue()
  endif()
  set(kind "${CMAKE_MATCH_1}")
  set(name "${CMAKE_MATCH_2}")
  # With a named version node in a linker version script, nm lists the node
  # itself as an absolute symbol and appends it to every name (@@NODE): neither
  # is part of what the symbol is.
  if(kind STREQUAL "A")
    continue()
  endif()
  string(REGEX REPLACE "@@?[A-Za-z0-9_.]+$" "" name "${name}")
  math(EXPR total "${total} + 1")
  set(allowed FALSE)
  foreach(pattern IN LISTS patterns)
    if(name MATCHES "${pattern}")
      set(allowed TRUE)
      break()
    endif()
  endforeach()
  if(allowed)
    continue()
  endif()

  # The owner of the symbol, for the report: its outermost class or namespace,
  # or its own name for a free function or variable.
  set(owner "${name}")
  string(REGEX REPLACE "^(vtable|VTT|typeinfo|typeinfo name|construction vtable|guard variable|TLS init function|TLS wrapper function) for " "" owner "${owner}")
  string(REGEX REPLACE "^(non-virtual |virtual |covariant return )thunk to " "" owner "${owner}")
  # Template arguments out, innermost first, then the parameter list and a
  # return type (what comes before the last space).
  set(previous "")
  while(NOT owner STREQUAL previous)
    set(previous "${owner}")
    string(REGEX REPLACE "<[^<>]*>" "" owner "${owner}")
  endwhile()
  string(REGEX REPLACE "\\(.*$" "" owner "${owner}")
  string(REGEX REPLACE "^.* " "" owner "${owner}")
  string(REGEX REPLACE "::.*$" "" owner "${owner}")
  if(owner STREQUAL "")
    set(owner "${name}")
  endif()
  string(MAKE_C_IDENTIFIER "${owner}" key)
  if(NOT DEFINED "count_${key}")
    list(APPEND groups "${owner}")
    set("count_${key}" 0)
  endif()
  math(EXPR "count_${key}" "${count_${key}} + 1")
  # Constructors and destructors come as several symbols (complete and base
  # object...) that demangle alike: one line each, with the count.
  string(MD5 line_key "${kind} ${name}")
  if(NOT DEFINED "times_${key}_${line_key}")
    set("times_${key}_${line_key}" 0)
    list(APPEND "lines_${key}" "${line_key}")
    set("text_${line_key}" "${kind} ${name}")
  endif()
  math(EXPR "times_${key}_${line_key}" "${times_${key}_${line_key}} + 1")
endforeach()

if(total EQUAL 0)
  message(FATAL_ERROR "${NM} listed no exported symbols in ${LIBRARY}")
endif()
if(NOT groups)
  message(STATUS "All ${total} exported symbols of ${LIBRARY} belong to the public interface")
  return()
endif()

list(SORT groups)
set(offenders 0)
message("Exported symbols of ${LIBRARY} that ${ALLOWED} does not allow, by class or namespace:")
foreach(owner IN LISTS groups)
  string(MAKE_C_IDENTIFIER "${owner}" key)
  math(EXPR offenders "${offenders} + ${count_${key}}")
  message("  ${owner} (${count_${key}}):")
  foreach(line_key IN LISTS "lines_${key}")
    set(times "${times_${key}_${line_key}}")
    if(times GREATER 1)
      message("    ${text_${line_key}}  (${times} symbols)")
    else()
      message("    ${text_${line_key}}")
    endif()
  endforeach()
endforeach()
list(JOIN groups ", " owners)
message(FATAL_ERROR
  "${offenders} of the ${total} exported symbols are not part of the public interface; "
  "they belong to ${owners}. Give internal classes hidden visibility (no XOLATREEMODEL_EXPORT) "
  "and keep weak template instantiations out of the dynamic symbol table; see the end of "
  "abi/exported-symbols.txt.")
