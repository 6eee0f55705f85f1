# Compiles each installed header alone.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_host("${CMAKE_CURRENT_LIST_DIR}/headers" "${SCRATCH_DIR}" "-DCMAKE_PREFIX_PATH=${PREFIX}")
