# Makes the Debian packages of this build, looks into them, and builds a host against what they
# unpack to.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

file(REMOVE_RECURSE "${SCRATCH_DIR}")
run("${CPACK}" --config "${BUILD_DIR}/CPackConfig.cmake" -C "${CONFIG}" -G DEB -B "${SCRATCH_DIR}")
set(root "${SCRATCH_DIR}/root")
include("${BUILD_DIR}/CPackConfig.cmake")

# Which packages there are depends on what this machine can build.
set(names liborvquerybuilder${SOVERSION} liborvquerybuilder-dev)
foreach(pair IN ITEMS application=orvquery designer=orvquerybuilder-designer
        python=python3-orvquerybuilder)
    string(REGEX MATCH "^(.*)=(.*)$" pair "${pair}")
    if("${CMAKE_MATCH_1}" IN_LIST CPACK_COMPONENTS_ALL)
        list(APPEND names "${CMAKE_MATCH_2}")
    endif()
endforeach()
file(GLOB packages "${SCRATCH_DIR}/*.deb")
list(LENGTH names expected)
list(LENGTH packages count)
if(NOT count EQUAL expected)
    message(FATAL_ERROR "There are ${count} packages, not ${expected}: ${packages}")
endif()

foreach(name IN LISTS names)
    file(GLOB package "${SCRATCH_DIR}/${name}_${VERSION}_*.deb")
    if(NOT package)
        message(FATAL_ERROR "There is no package ${name} among ${packages}")
    endif()
    run("${DPKG_DEB}" -x "${package}" "${root}")
    foreach(document IN ITEMS copyright changelog.gz)
        if(NOT EXISTS "${root}/usr/share/doc/${name}/${document}")
            message(FATAL_ERROR "${name} lacks its ${document}")
        endif()
    endforeach()
    output_of(depends "${DPKG_DEB}" -f "${package}" Depends)
    message("${name} needs ${depends}")
    if(name STREQUAL "liborvquerybuilder${SOVERSION}")
        if(NOT depends MATCHES "libqt6widgets6 \\(>=" OR depends MATCHES "orv")
            message(FATAL_ERROR "It needs something else")
        endif()
        output_of(shlibs "${DPKG_DEB}" --info "${package}" shlibs)
        output_of(triggers "${DPKG_DEB}" --info "${package}" triggers)
        if(NOT shlibs STREQUAL "liborvquerybuilder ${SOVERSION} ${name} (>= ${VERSION})\n" OR
                NOT triggers STREQUAL "activate-noawait ldconfig\n")
            message(FATAL_ERROR "Its control files are wrong:\n${shlibs}\n${triggers}")
        endif()
    elseif(NOT depends MATCHES "liborvquerybuilder${SOVERSION} \\(= ${VERSION}\\)")
        message(FATAL_ERROR "It does not need the library of its version")
    endif()
    if(name STREQUAL "liborvquerybuilder-dev" AND NOT depends MATCHES "qt6-base-dev")
        message(FATAL_ERROR "It does not need the headers of Qt")
    elseif(name STREQUAL "orvquery" AND NOT depends MATCHES "libqt6sql6-sqlite.*libqt6sql6 \\(>=")
        message(FATAL_ERROR "It does not need Qt SQL and its driver")
    endif()
endforeach()
if("application" IN_LIST CPACK_COMPONENTS_ALL)
    foreach(file IN ITEMS bin/orvquery share/man/man1/orvquery.1.gz
            share/applications/orvquery.desktop share/mime/packages/orvquery.xml
            share/icons/hicolor/scalable/apps/orvquery.svg
            share/icons/hicolor/scalable/mimetypes/application-x-orvquery+json.svg
            share/bash-completion/completions/orvquery share/zsh/vendor-completions/_orvquery
            share/fish/vendor_completions.d/orvquery.fish)
        if(NOT EXISTS "${root}/usr/${file}")
            message(FATAL_ERROR "orvquery lacks ${file}")
        endif()
    endforeach()
endif()
build_host("${CMAKE_CURRENT_LIST_DIR}/host" "${SCRATCH_DIR}/host"
    "-DCMAKE_PREFIX_PATH=${root}/usr" "-DEXPECTED_PREFIX=${root}/usr")
run_host("${SCRATCH_DIR}/host")
# The library lies where the loader looks only when the package is really installed.
load_components("${root}/usr" "${CPACK_COMPONENTS_ALL}" "LD_LIBRARY_PATH=${root}/usr/${LIBDIR}")
