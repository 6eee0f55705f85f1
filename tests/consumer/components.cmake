# Installs everything that this build has, takes the folder elsewhere, and uses what is there: each
# component finds the library by itself, and the package says which components there are.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")
include("${BUILD_DIR}/CPackConfig.cmake")
set(components ${CPACK_COMPONENTS_ALL})

file(REMOVE_RECURSE "${PREFIX}" "${PREFIX}-first")
install_components("${BUILD_DIR}" "${PREFIX}-first" ${components})
file(RENAME "${PREFIX}-first" "${PREFIX}")

set(way "")
if(NOT HAS_RPATH)
    set(way "LD_LIBRARY_PATH=${PREFIX}/${LIBDIR}")
endif()
load_components("${PREFIX}" "${components}" ${way})

list(JOIN components " " all)
request("REQUIRED COMPONENTS ${all}")
list(SORT components)
list(SORT FOUND_COMPONENTS)
if(NOT FOUND_COMPONENTS STREQUAL components)
    message(FATAL_ERROR "Installed are ${components}, but these are found: ${FOUND_COMPONENTS}")
endif()
