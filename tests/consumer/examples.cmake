# Builds the examples against the package in PREFIX, as someone does who has copied them.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_host("${SOURCE_DIR}/examples" "${SCRATCH_DIR}"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${SCRATCH_DIR}/bin")
foreach(NAME IN ITEMS smallest host form)
    find_program(PROGRAM orv_example_${NAME} PATHS "${SCRATCH_DIR}/bin"
        "${SCRATCH_DIR}/bin/${CONFIG}" NO_DEFAULT_PATH NO_CACHE REQUIRED)
    include("${SOURCE_DIR}/tests/examples/run.cmake")
    unset(PROGRAM)
endforeach()
