# Builds the host of this folder against the package in PREFIX, and runs it.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_host("${CMAKE_CURRENT_LIST_DIR}/host" "${SCRATCH_DIR}"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DEXPECTED_PREFIX=${PREFIX}"
    "-DEXPECTED_VERSION=${VERSION}")
run_host("${SCRATCH_DIR}")
