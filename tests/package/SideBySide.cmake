# Script mode: installs the Qt 5 and the Qt 6 build into one prefix, checks
# that no file of one was overwritten by a different file of the other, then
# builds and runs a host against each package from that shared prefix, and
# imports each build's QML module from there.
#   -DXOLA_QT5_BUILD_DIR=... -DXOLA_QT6_BUILD_DIR=... -DXOLA_CONSUMER_SOURCE=... -DXOLA_WORK_DIR=...
#   [-DXOLA_QT5_QMLTESTRUNNER=... -DXOLA_QT6_QMLTESTRUNNER=... -DXOLA_QML_DOCUMENT=... -DXOLA_QML_RUNNER_SCRIPT=...]
cmake_minimum_required(VERSION 3.16)
set(prefix "${XOLA_WORK_DIR}/prefix")
file(REMOVE_RECURSE "${XOLA_WORK_DIR}")

include("${CMAKE_CURRENT_LIST_DIR}/RunStep.cmake")

# Each build alone, to learn which files it writes and what they hold.
foreach(major 5 6)
  set(alone "${XOLA_WORK_DIR}/alone-qt${major}")
  run(${CMAKE_COMMAND} --install "${XOLA_QT${major}_BUILD_DIR}" --prefix "${alone}")
  file(GLOB_RECURSE files_${major} RELATIVE "${alone}" "${alone}/*")
endforeach()
set(shared_files "")
foreach(f IN LISTS files_5)
  if(f IN_LIST files_6)
    list(APPEND shared_files "${f}")
    file(SHA256 "${XOLA_WORK_DIR}/alone-qt5/${f}" h5)
    file(SHA256 "${XOLA_WORK_DIR}/alone-qt6/${f}" h6)
    if(NOT h5 STREQUAL h6)
      message(FATAL_ERROR "Both builds install ${f} with different contents")
    endif()
  endif()
endforeach()
message(STATUS "Files both builds install, identical: ${shared_files}")
foreach(f lib/libXOLATreeModel.so lib/cmake/XOLATreeModel/XOLATreeModelConfig.cmake lib/pkgconfig/XOLATreeModel.pc
          lib/libXOLATreeModelQt6.so lib/cmake/XOLATreeModelQt6/XOLATreeModelQt6Config.cmake
          lib/pkgconfig/XOLATreeModelQt6.pc)
  get_filename_component(name "${f}" NAME)
  set(found FALSE)
  foreach(g IN LISTS files_5 files_6)
    get_filename_component(gname "${g}" NAME)
    if(gname STREQUAL name)
      set(found TRUE)
    endif()
  endforeach()
  if(NOT found)
    message(FATAL_ERROR "Not installed: ${name}")
  endif()
endforeach()

# Then both into one prefix, and a host of each major built against it.
run(${CMAKE_COMMAND} --install "${XOLA_QT5_BUILD_DIR}" --prefix "${prefix}")
run(${CMAKE_COMMAND} --install "${XOLA_QT6_BUILD_DIR}" --prefix "${prefix}")
foreach(major 5 6)
  set(build "${XOLA_WORK_DIR}/consumer-qt${major}")
  run(${CMAKE_COMMAND} -S "${XOLA_CONSUMER_SOURCE}" -B "${build}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DQT_MAJOR=${major}")
  run(${CMAKE_COMMAND} --build "${build}")
  run("${build}/consumer")
endforeach()
# Each build's QML module under the QML import path of its own Qt major, and a
# document that imports it from there, run by that major's qmltestrunner.
foreach(major 5 6)
  set(import_dir "${prefix}/lib/qt${major}/qml")
  foreach(f qmldir plugins.qmltypes libxolatreemodelplugin.so)
    if(NOT EXISTS "${import_dir}/com/xolasys/ixolatreemodel/${f}")
      message(FATAL_ERROR "Not installed: ${import_dir}/com/xolasys/ixolatreemodel/${f}")
    endif()
  endforeach()
  if(XOLA_QT${major}_QMLTESTRUNNER AND XOLA_QML_DOCUMENT)
    if(major EQUAL 5)
      set(import_variable QML2_IMPORT_PATH)
    else()
      set(import_variable QML_IMPORT_PATH)
    endif()
    run(${CMAKE_COMMAND} -E env "${import_variable}=${import_dir}" QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
        ${CMAKE_COMMAND} "-DRUNNER=${XOLA_QT${major}_QMLTESTRUNNER}" "-DINPUT=${XOLA_QML_DOCUMENT}"
        "-DWORK_DIR=${XOLA_WORK_DIR}/qml-qt${major}" -P "${XOLA_QML_RUNNER_SCRIPT}")
  endif()
endforeach()

# And each pkg-config file names its own Qt.
find_program(PKG_CONFIG_EXECUTABLE pkg-config)
if(PKG_CONFIG_EXECUTABLE)
  foreach(pair "XOLATreeModel;Qt5Core" "XOLATreeModelQt6;Qt6Core")
    list(GET pair 0 pc)
    list(GET pair 1 qt)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${prefix}/lib/pkgconfig"
                            ${PKG_CONFIG_EXECUTABLE} --print-requires ${pc}
                    RESULT_VARIABLE rc OUTPUT_VARIABLE requires ERROR_VARIABLE err)
    if(NOT rc EQUAL 0 OR NOT requires MATCHES "${qt}")
      message(FATAL_ERROR "pkg-config ${pc}: expected it to require ${qt}, got (${rc}) ${requires} ${err}")
    endif()
  endforeach()
endif()
message(STATUS "Both packages installed side by side and consumed")
