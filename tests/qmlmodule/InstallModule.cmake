# Installs the whole build into a fresh prefix, as a host's packager would, and
# checks that the QML module landed where the tests import it from.
#
# cmake -DBUILD_DIR=<build> -DPREFIX=<prefix> [-DDESTDIR=<stage>] -DMODULE_DIR=<installed module dir> -P InstallModule.cmake
cmake_minimum_required(VERSION 3.16)
foreach(var BUILD_DIR PREFIX MODULE_DIR)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "${var} is not set")
  endif()
endforeach()
include("${CMAKE_CURRENT_LIST_DIR}/../package/RunStep.cmake")

if(DESTDIR)
  file(REMOVE_RECURSE "${DESTDIR}")
  run(${CMAKE_COMMAND} -E env "DESTDIR=${DESTDIR}" ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}")
else()
  file(REMOVE_RECURSE "${PREFIX}")
  run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}")
endif()
foreach(file qmldir plugins.qmltypes)
  if(NOT EXISTS "${MODULE_DIR}/${file}")
    message(FATAL_ERROR "Not installed: ${MODULE_DIR}/${file}")
  endif()
endforeach()
file(GLOB plugin "${MODULE_DIR}/*xolatreemodelplugin*")
if(NOT plugin)
  message(FATAL_ERROR "No plugin installed in ${MODULE_DIR}")
endif()
