# Script mode: install, configure the consumer against the install, build, run.
set(prefix "${XOLA_WORK_DIR}/prefix")
set(build "${XOLA_WORK_DIR}/consumer-build")
file(REMOVE_RECURSE "${XOLA_WORK_DIR}")

include("${CMAKE_CURRENT_LIST_DIR}/RunStep.cmake")

run(${CMAKE_COMMAND} --install "${XOLA_BUILD_DIR}" --prefix "${prefix}")
foreach(f include/XOLATreeModel/XOLATreeModel.h include/XOLATreeModel/IXOLATreeModel.h
          include/XOLATreeModel/XOLATreeItem.h include/XOLATreeModel/XOLATreeModelGlobal.h)
  if(NOT EXISTS "${prefix}/${f}")
    message(FATAL_ERROR "Not installed: ${f}")
  endif()
endforeach()
file(GLOB_RECURSE configs "${prefix}/*/${XOLA_PACKAGE_NAME}Config.cmake")
file(GLOB_RECURSE pcs "${prefix}/*/${XOLA_PACKAGE_NAME}.pc")
if(NOT configs OR NOT pcs)
  message(FATAL_ERROR "The CMake package or the pkg-config file is missing")
endif()
run(${CMAKE_COMMAND} -S "${XOLA_CONSUMER_SOURCE}" -B "${build}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DQT_MAJOR=${XOLA_QT_MAJOR}")
run(${CMAKE_COMMAND} --build "${build}")
run("${build}/consumer")
