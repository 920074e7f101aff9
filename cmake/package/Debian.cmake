# Brings what was installed for the packages to Debian's ways, before they are packed: no search paths of their own in
# programs and libraries, a copyright and a changelog for each, compressed pages.
file(READ ${CMAKE_CURRENT_LIST_DIR}/copyright copyright)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

function(compress file)
    execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)

    file(GLOB_RECURSE binaries ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/lib/*.so.*
        ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/bin/*)
    foreach(binary IN LISTS binaries)
        if(NOT IS_SYMLINK ${binary})
            file(RPATH_REMOVE FILE ${binary})
        endif()
    endforeach()

    file(GLOB pages ${share}/man/man1/*.1)
    foreach(page IN LISTS pages)
        compress(${page})
    endforeach()
    if(EXISTS ${share}/zsh/site-functions)
        file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
    endif()
    if(EXISTS ${share}/doc/orbitwalk AND NOT package STREQUAL orbitwalk)
        file(RENAME ${share}/doc/orbitwalk ${share}/doc/${package})
    endif()
    set(doc ${share}/doc/${package})
    if(EXISTS ${doc}/CHANGELOG.md)
        file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
        compress(${doc}/changelog)
    endif()
    file(WRITE ${doc}/copyright "${copyright}")
    file(WRITE ${doc}/changelog.Debian "orbitwalk (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n
  * Version ${CPACK_PACKAGE_VERSION}.\n\n -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    compress(${doc}/changelog.Debian)
endforeach()
