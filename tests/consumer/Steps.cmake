# What the scripts of this folder have in common. CTest calls them with the variables that
# CMakeLists.txt passes.

cmake_policy(VERSION 3.25)

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# output_of(variable command...): what the command writes to its standard output.
function(output_of variable)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    set(${variable} "${output}" PARENT_SCOPE)
endfunction()

# The command line that configures a project with the compiler and the Qt of this build.
function(configure_command variable source build)
    set(${variable}
        "${CMAKE_COMMAND}" -S "${source}" -B "${build}" -G "${GENERATOR}"
        "-DCMAKE_BUILD_TYPE=${CONFIG}"
        "-DQt6_DIR=${Qt6_DIR}"
        "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
        "-DCMAKE_CXX_COMPILER_LAUNCHER=${CXX_COMPILER_LAUNCHER}"
        # Compiling is what these tests wait for.
        "-DCMAKE_CXX_FLAGS=-O0 ${CXX_FLAGS}"
        "-DCMAKE_CXX_FLAGS_${CONFIG_UPPER}="
        ${ARGN}
        PARENT_SCOPE)
endfunction()

# build_host(source build [cmake option...]): configures and builds a project. What an earlier run
# found stays out of it; what it compiled is used again where nothing has changed.
function(build_host source build)
    file(REMOVE "${build}/CMakeCache.txt")
    configure_command(command "${source}" "${build}" ${ARGN})
    run(${command})
    run("${CMAKE_COMMAND}" --build "${build}" --config "${CONFIG}" --parallel 2)
endfunction()

function(run_host build)
    find_program(host consumer PATHS "${build}" "${build}/${CONFIG}"
        NO_DEFAULT_PATH NO_CACHE REQUIRED)
    run("${host}")
endfunction()

# install(prefix component...): installs components of the build in BUILD_DIR.
function(install_components build prefix)
    foreach(component IN LISTS ARGN)
        run("${CMAKE_COMMAND}" --install "${build}" --config "${CONFIG}" --prefix "${prefix}"
            --component ${component})
    endforeach()
endfunction()
