# CPack includes it when the files of each package are in place and before they are packed: Debian
# wants the licence and the changes of a package in a folder of its name.

cmake_policy(VERSION 3.25)

if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

file(READ "${CPACK_ORV_SOURCE_DIR}/LICENSE" licence)
string(STRIP "${licence}" licence)
# The first two paragraphs are the name and the copyright, which have fields of their own.
string(REGEX REPLACE "^[^\n]*\n\n[^\n]*\n\n" "" licence "${licence}")
string(REGEX REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REGEX REPLACE "\n" "\n " licence " ${licence}")
# SOURCE_DATE_EPOCH gives the same packages on another day.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" upper)
    set(root "${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}")
    if(NOT EXISTS "${root}")
        message(FATAL_ERROR "The component ${component} has no files in ${root}")
    endif()
    file(REMOVE_RECURSE "${root}/share/doc/orvquerybuilder")
    set(folder "${root}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
    configure_file("${CPACK_ORV_SOURCE_DIR}/packaging/copyright.in" "${folder}/copyright" @ONLY)
    configure_file("${CPACK_ORV_SOURCE_DIR}/packaging/changelog.in" "${folder}/changelog" @ONLY)
    file(ARCHIVE_CREATE OUTPUT "${folder}/changelog.gz" PATHS "${folder}/changelog"
        FORMAT raw COMPRESSION GZip COMPRESSION_LEVEL 9)
    file(REMOVE "${folder}/changelog")
endforeach()
