# What is installed, in three components: `libraries` (engine, its C interface, refine), `tool` (the tool, and a host's
# libraries) and `development` (headers, names to link by, CMake package, pkg-config files, docs, examples).
include(CMakePackageConfigHelpers)

# Who links a library by its name is told when its calls or its records' layout change. Android has no such names.
set(ORBITWALK_SOVERSION 1)
set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Orbitwalk)
set(host_includes ${CMAKE_INSTALL_INCLUDEDIR}/orbitwalk/host)

# All that has to be built for it, without the tests.
add_custom_target(installed)

# orbitwalk_install_library(NAME COMPONENT [INCLUDE DIRECTORY] [HEADERS FILE...] [CFLAGS FLAG...] [LIBS FLAG...])
# As Orbitwalk::NAME for CMake, here and where it is installed, and as orbitwalk-NAME for pkg-config.
function(orbitwalk_install_library name component)
    cmake_parse_arguments(ARG "" "INCLUDE" "HEADERS;CFLAGS;LIBS" ${ARGN})
    set(target Orbitwalk${name})
    if(NOT TARGET ${target})
        return()
    endif()
    add_library(Orbitwalk::${name} ALIAS ${target})
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
    target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    if(ARG_INCLUDE)
        target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${ARG_INCLUDE}>)
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL SHARED_LIBRARY)
        # One search path for both trees. CMake pads a shorter one of the build tree with empty entries, and each of
        # them means the working directory.
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
        if(NOT ANDROID)
            set_target_properties(${target} PROPERTIES SOVERSION ${ORBITWALK_SOVERSION}
                VERSION ${ORBITWALK_SOVERSION}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH})
        endif()
        add_dependencies(installed ${target})
    endif()
    install(TARGETS ${target} EXPORT OrbitwalkTargets
        LIBRARY COMPONENT ${component} NAMELINK_COMPONENT development)
    install(FILES ${ARG_HEADERS} DESTINATION ${ARG_INCLUDE} COMPONENT development)

    string(TOLOWER ${name} name_lower)
    file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    set(pc_flags "-I\${includedir}")
    if(ARG_INCLUDE)
        string(APPEND pc_flags " -I\${prefix}/${ARG_INCLUDE}")
    endif()
    string(APPEND pc_flags " ${ARG_CFLAGS}")
    set(pc_libs "")
    if(type STREQUAL SHARED_LIBRARY)
        # The engine's own libraries lie beside it.
        set(pc_libs "-L\${libdir} -Wl,-rpath-link,\${libdir} -l${target} ${ARG_LIBS}")
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/package/orbitwalk.pc.in orbitwalk-${name_lower}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orbitwalk-${name_lower}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
endfunction()

# Only MotionKernels.h and GeometryOpenCV.h show OpenCV; what they call is in its core.
get_target_property(opencv_includes OrbitwalkOpenCV::core INTERFACE_INCLUDE_DIRECTORIES)
list(TRANSFORM opencv_includes PREPEND -I)
list(JOIN opencv_includes " " opencv_flags)
target_link_libraries(OrbitwalkEngine INTERFACE $<INSTALL_INTERFACE:OrbitwalkOpenCV::core>)

add_library(OrbitwalkReader INTERFACE)
target_compile_features(OrbitwalkReader INTERFACE cxx_std_20)
target_include_directories(OrbitwalkReader INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)

orbitwalk_install_library(Reader development)
orbitwalk_install_library(Engine libraries CFLAGS "${opencv_flags}" LIBS -lopencv_core)
orbitwalk_install_library(C libraries)
orbitwalk_install_library(Refine libraries)
orbitwalk_install_library(Platform tool INCLUDE ${host_includes}
    HEADERS ${PROJECT_SOURCE_DIR}/host/platform/include/OrbitwalkPlatform.h)
orbitwalk_install_library(MP4Writer tool INCLUDE ${host_includes}
    HEADERS ${PROJECT_SOURCE_DIR}/host/mp4writer/include/MP4Writer.h)
if(TARGET orbitwalk)
    set_target_properties(orbitwalk PROPERTIES INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}"
        BUILD_WITH_INSTALL_RPATH ON)
    install(TARGETS orbitwalk COMPONENT tool)
    add_dependencies(installed orbitwalk)
endif()
if(TARGET manual)
    add_dependencies(installed manual)
endif()

install(FILES
    include/orbitwalk/Engine.h
    include/orbitwalk/Export.h
    include/orbitwalk/Geometry.h
    include/orbitwalk/GeometryOpenCV.h
    include/orbitwalk/MetaData.h
    include/orbitwalk/MotionKernels.h
    include/orbitwalk/RecordCheck.h
    include/orbitwalk/RecordReader.h
    include/orbitwalk/RenderMatrix.h
    include/orbitwalk/SharedBuffers.h
    include/orbitwalk/orbitwalk.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orbitwalk COMPONENT development)
if(ORBITWALK_BUILD_REFINE)
    install(DIRECTORY include/orbitwalk/refine DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orbitwalk COMPONENT development
        FILES_MATCHING PATTERN "*.h")
endif()

install(EXPORT OrbitwalkTargets NAMESPACE Orbitwalk:: DESTINATION ${cmake_dir} COMPONENT development)
configure_package_config_file(cmake/package/OrbitwalkConfig.cmake.in OrbitwalkConfig.cmake INSTALL_DESTINATION ${cmake_dir})
write_basic_package_version_file(OrbitwalkConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OrbitwalkConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/OrbitwalkConfigVersion.cmake
    cmake/FindOrbitwalkOpenCV.cmake DESTINATION ${cmake_dir} COMPONENT development)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
