# Installs the library into a scratch prefix, then configures, builds and runs the host of this
# folder against it. Called by CTest with the variables that tests/CMakeLists.txt passes.

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# What an earlier run left behind must not help this one.
file(REMOVE_RECURSE "${SCRATCH_DIR}")
set(prefix "${SCRATCH_DIR}/prefix")

foreach(component IN ITEMS runtime dev)
    run("${CMAKE_COMMAND}" --install "${PACKAGE_BUILD_DIR}" --config "${CONFIG}"
        --prefix "${prefix}" --component ${component})
endforeach()

run("${CMAKE_COMMAND}" -S "${SOURCE_DIR}" -B "${SCRATCH_DIR}/build" -G "${GENERATOR}"
    "-DCMAKE_BUILD_TYPE=${CONFIG}"
    "-DCMAKE_PREFIX_PATH=${prefix}"
    "-DQt6_DIR=${Qt6_DIR}"
    "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    "-DCMAKE_CXX_COMPILER_LAUNCHER=${CXX_COMPILER_LAUNCHER}"
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
    "-DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${SCRATCH_DIR}/bin")
run("${CMAKE_COMMAND}" --build "${SCRATCH_DIR}/build" --config "${CONFIG}")

find_program(host consumer PATHS "${SCRATCH_DIR}/bin" "${SCRATCH_DIR}/bin/${CONFIG}"
    NO_DEFAULT_PATH REQUIRED)
run("${host}")
