# Debian packages by `cpack -G DEB`: liborbitwalk1 (engine, its C interface, refine), liborbitwalk-dev, orbitwalk (tool, a host's libraries).
set(ORBITWALK_MAINTAINER "Orbitwalk maintainers <maintainers@orbitwalk.invalid>" CACHE STRING "Of the packages: NAME <ADDRESS>")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orbitwalk)
set(CPACK_PACKAGE_CONTACT "${ORBITWALK_MAINTAINER}")
# Each package has a description of its own, which this one would stand above.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package/Debian.cmake)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(libraries liborbitwalk${ORBITWALK_SOVERSION})
set(CPACK_COMPONENTS_ALL libraries development tool)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What the build tree holds comes from these packages themselves, at one version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(about
    "Orbitwalk measures the camera's motion while the user sweeps it across a"
    "scene, encodes the frames as an MP4, and tells players by a record of"
    "motion how to show the sweep steady."
    "")
function(describe component summary)
    list(JOIN about "\n" extended)
    list(JOIN ARGN "\n" holds)
    set(CPACK_COMPONENT_${component}_DESCRIPTION "${summary}\n${extended}\n${holds}" PARENT_SCOPE)
endfunction()

set(triggers ${PROJECT_SOURCE_DIR}/cmake/package/triggers)
describe(LIBRARIES "capture engine of a panning-video mode"
    "This package holds the engine and the library that plans a steadier path.")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME ${libraries})
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA ${triggers})
# The engine's five calls into its host: its own libraries, or others of their names.
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_DEPENDS "orbitwalk ${version} | orbitwalk-host")

describe(DEVELOPMENT "capture engine of a panning-video mode (development)"
    "This package holds headers, the CMake package, pkg-config files, docs and"
    "examples.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborbitwalk-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${libraries} ${version}, orbitwalk ${version}, libopencv-core-dev")

describe(TOOL "tool for panning-video sweeps"
    "This package holds the tool that makes, captures, refines, plays and judges"
    "sweeps, and the libraries that stand in for a phone's log and MP4 writer.")
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME orbitwalk)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION video)
set(CPACK_DEBIAN_TOOL_PACKAGE_CONTROL_EXTRA ${triggers})
# Opened by name, so that nothing that is linked tells of it.
string(REGEX MATCH "^[0-9]+" avfilter "${AVFILTER_VERSION}")
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${libraries} ${version}, libavfilter${avfilter} | libavfilter-extra${avfilter}")
set(CPACK_DEBIAN_TOOL_PACKAGE_PROVIDES orbitwalk-host)

include(CPack)
