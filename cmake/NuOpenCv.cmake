# The OpenCV bridge, interop/NuOpenCv.h: one header that the library never includes, so nothing
# of the library links OpenCV. It is installed only on request (NU_INSTALL_OPENCV_INTEROP), to
# <prefix>/include/interop/, where it is included as in the source tree: <interop/NuOpenCv.h>.
if(NU_INSTALL_OPENCV_INTEROP)
  install(FILES ${PROJECT_SOURCE_DIR}/interop/NuOpenCv.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/interop)
endif()

# Nu::OpenCvInterop, for the example and the test, exists only where OpenCV's core is found.
if(NOT (NU_BUILD_TESTS OR NU_BUILD_EXAMPLES))
  return()
endif()
# Debian's libopencv-core-dev has the header and the library but not OpenCV's CMake package
# (that comes with the whole of libopencv-dev), hence the search by hand after find_package.
find_package(OpenCV QUIET COMPONENTS core)
if(OpenCV_FOUND)
  set(NU_OPENCV_CORE opencv_core)
else()
  find_path(NU_OPENCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4)
  find_library(NU_OPENCV_CORE_LIBRARY opencv_core)
  if(NU_OPENCV_INCLUDE_DIR AND NU_OPENCV_CORE_LIBRARY)
    add_library(NuOpenCvCore UNKNOWN IMPORTED)
    set_target_properties(NuOpenCvCore PROPERTIES IMPORTED_LOCATION ${NU_OPENCV_CORE_LIBRARY}
                          INTERFACE_INCLUDE_DIRECTORIES ${NU_OPENCV_INCLUDE_DIR})
    set(NU_OPENCV_CORE NuOpenCvCore)
  endif()
endif()
if(NU_OPENCV_CORE)
  add_library(Nu.OpenCvInterop INTERFACE)
  add_library(Nu::OpenCvInterop ALIAS Nu.OpenCvInterop)
  target_link_libraries(Nu.OpenCvInterop INTERFACE Nu::CoreEx ${NU_OPENCV_CORE})
endif()
