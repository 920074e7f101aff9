# What an AAR holds, in the component `prefab`: manifest, and below prefab/ each library with its headers and what Gradle
# asks of it. Builds for several ABIs install into one prefix.
#     cmake --install BUILD --component prefab --prefix AAR && (cd AAR && zip -r ../orbitwalk.aar .)
set(ORBITWALK_PREFAB_API "${ANDROID_PLATFORM_LEVEL}")
set(ORBITWALK_PREFAB_NDK "${ANDROID_NDK_MAJOR}")
foreach(needed ANDROID_ABI ANDROID_STL ORBITWALK_PREFAB_API ORBITWALK_PREFAB_NDK)
    if("${${needed}}" STREQUAL "")
        message(STATUS "No component prefab: the toolchain file does not say ${needed}")
        return()
    endif()
endforeach()

set(prefab ${PROJECT_BINARY_DIR}/prefab)
configure_file(cmake/prefab/prefab.json.in ${prefab}/prefab.json @ONLY)
configure_file(cmake/prefab/abi.json.in ${prefab}/abi.json @ONLY)
configure_file(cmake/prefab/AndroidManifest.xml.in ${prefab}/AndroidManifest.xml @ONLY)

# orbitwalk_prefab(DESTINATION FILE...), orbitwalk_prefab_module(LIBRARY HEADER...): headers below include/orbitwalk
function(orbitwalk_prefab destination)
    install(FILES ${ARGN} DESTINATION ${destination} COMPONENT prefab EXCLUDE_FROM_ALL)
endfunction()
function(orbitwalk_prefab_module library)
    set(module prefab/modules/${library})
    orbitwalk_prefab(${module} cmake/prefab/module.json)
    orbitwalk_prefab(${module}/libs/android.${ANDROID_ABI} ${prefab}/abi.json $<TARGET_FILE:${library}>)
    list(TRANSFORM ARGN PREPEND include/orbitwalk/)
    orbitwalk_prefab(${module}/include/orbitwalk ${ARGN})
    orbitwalk_prefab(${module}/include host/mp4writer/include/MP4Writer.h)
endfunction()

orbitwalk_prefab(. ${prefab}/AndroidManifest.xml)
orbitwalk_prefab(prefab ${prefab}/prefab.json)
# The headers that need no OpenCV.
set(of_records Export.h Geometry.h MetaData.h RecordCheck.h RecordReader.h RenderMatrix.h)
orbitwalk_prefab_module(OrbitwalkEngine Engine.h SharedBuffers.h ${of_records})
orbitwalk_prefab_module(OrbitwalkC orbitwalk.h ${of_records})
