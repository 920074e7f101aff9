# OpenCV's modules as targets OrbitwalkOpenCV::core, ::imgproc, ::video, ::imgcodecs and ::calib3d; the components are
# the modules that must be there.
# Debian splits OpenCV by module, and its package configuration needs all of them installed; the engine
# needs three. So the configuration of an SDK is used where there is one, the libraries themselves otherwise.
find_package(OpenCV 4.6 QUIET CONFIG OPTIONAL_COMPONENTS core imgproc video imgcodecs calib3d)
foreach(module core imgproc video imgcodecs calib3d)
    if(TARGET OrbitwalkOpenCV::${module})
        # By an earlier call.
    elseif(TARGET opencv_${module})
        add_library(OrbitwalkOpenCV::${module} ALIAS opencv_${module})
    else()
        find_path(OrbitwalkOpenCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4)
        find_library(OrbitwalkOpenCV_${module}_LIBRARY opencv_${module})
        if(OrbitwalkOpenCV_INCLUDE_DIR AND OrbitwalkOpenCV_${module}_LIBRARY)
            add_library(OrbitwalkOpenCV::${module} UNKNOWN IMPORTED)
            set_target_properties(OrbitwalkOpenCV::${module} PROPERTIES
                IMPORTED_LOCATION ${OrbitwalkOpenCV_${module}_LIBRARY}
                INTERFACE_INCLUDE_DIRECTORIES ${OrbitwalkOpenCV_INCLUDE_DIR})
        endif()
    endif()
    if(TARGET OrbitwalkOpenCV::${module})
        set(OrbitwalkOpenCV_${module}_FOUND TRUE)
    endif()
endforeach()
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OrbitwalkOpenCV REQUIRED_VARS OrbitwalkOpenCV_core_FOUND HANDLE_COMPONENTS)
