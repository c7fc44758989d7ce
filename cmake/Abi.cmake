# The library's binary interface: a committed baseline per Qt major,
# abi/<package>.abi, that the test abi_compatible compares every ordinary build
# with, and the target abi-baseline that rewrites it (docs/ABI.md).
#
# Sanitizer and fuzz builds instrument the library, which changes what it
# exports; they neither check nor write baselines.

set(XOLA_ABI_DIR ${CMAKE_CURRENT_SOURCE_DIR}/abi)
if(XOLATREEMODEL_SANITIZE OR XOLATREEMODEL_BUILD_FUZZERS)
  set(XOLA_ABI_CHECKS OFF)
  return()
endif()
set(XOLA_ABI_CHECKS ON)

# A baseline written from a build in another directory should be the same file,
# byte for byte. Paths in the debug information change the order in which abidw
# writes some declarations, so the builds that write baselines map the source
# and build directories to fixed names (scripts/abi-baseline.sh sets this).
option(XOLATREEMODEL_ABI_FIXED_PATHS
  "Map the source and build directories to fixed names in the library's debug information" OFF)
set(XOLA_ABI_FIXED_SOURCE_DIR /xola-abi/src)
set(XOLA_ABI_FIXED_BINARY_DIR /xola-abi/build)
if(XOLATREEMODEL_ABI_FIXED_PATHS)
  # The later map wins for the build directory, which lies in the source tree.
  target_compile_options(XOLATreeModel PRIVATE
    -fdebug-prefix-map=${CMAKE_CURRENT_SOURCE_DIR}=${XOLA_ABI_FIXED_SOURCE_DIR}
    -fdebug-prefix-map=${CMAKE_CURRENT_BINARY_DIR}=${XOLA_ABI_FIXED_BINARY_DIR})
endif()

# Arguments of cmake/AbiCompare.cmake shared by the test and the target; the
# prefixes that leave the translation units' names relative go deepest first.
get_filename_component(_xola_real_source_dir ${CMAKE_CURRENT_SOURCE_DIR} REALPATH)
get_filename_component(_xola_real_binary_dir ${CMAKE_CURRENT_BINARY_DIR} REALPATH)
set(XOLA_ABI_COMPARE_ARGS
  -DLIBRARY=$<TARGET_FILE:XOLATreeModel>
  -DBASELINE=${XOLA_ABI_DIR}/${XOLA_PACKAGE_NAME}.abi
  -DHEADERS_DIR=${CMAKE_CURRENT_SOURCE_DIR}/include
  -DSUPPRESSIONS=${XOLA_ABI_DIR}/public-interface.suppr
  "-DSTRIP_PREFIXES=${XOLA_ABI_FIXED_BINARY_DIR}|${XOLA_ABI_FIXED_SOURCE_DIR}|${CMAKE_CURRENT_BINARY_DIR}|${_xola_real_binary_dir}|${CMAKE_CURRENT_SOURCE_DIR}|${_xola_real_source_dir}")

add_custom_target(abi-baseline
  COMMAND ${CMAKE_COMMAND} -DMODE=write ${XOLA_ABI_COMPARE_ARGS}
          -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/abi-baseline -DBUILD_TYPE=$<CONFIG>
          -P ${CMAKE_CURRENT_SOURCE_DIR}/cmake/AbiCompare.cmake
  DEPENDS XOLATreeModel
  COMMENT "Writing abi/${XOLA_PACKAGE_NAME}.abi from this build"
  VERBATIM)
