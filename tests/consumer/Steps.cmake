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

# request(arguments [text...]): find_package(OrvQueryBuilder <arguments>) with the package in PREFIX
# fails and says all of the texts; without texts it succeeds. FOUND_COMPONENTS are those that the
# package says are there.
function(request arguments)
    file(REMOVE_RECURSE "${SCRATCH_DIR}")
    file(WRITE "${SCRATCH_DIR}/CMakeLists.txt"
        "cmake_minimum_required(VERSION 3.25)\n"
        "project(Request LANGUAGES CXX)\n"
        "find_package(OrvQueryBuilder ${arguments})\n"
        "message(\"found: \${OrvQueryBuilder_FOUND}\")\n"
        "foreach(component runtime development application designer python Widgets)\n"
        "    if(OrvQueryBuilder_\${component}_FOUND)\n"
        "        message(\"component \${component}\")\n"
        "    endif()\n"
        "endforeach()\n")
    configure_command(command "${SCRATCH_DIR}" "${SCRATCH_DIR}/build"
        "-DCMAKE_PREFIX_PATH=${PREFIX}")
    execute_process(COMMAND ${command}
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    message("find_package(OrvQueryBuilder ${arguments}):\n${output}")
    if(ARGN AND status EQUAL 0)
        message(FATAL_ERROR "It was not refused")
    elseif(NOT ARGN AND NOT (status EQUAL 0 AND output MATCHES "found: (TRUE|1)"))
        message(FATAL_ERROR "It was refused")
    endif()
    string(REGEX MATCHALL "component [A-Za-z]+" components "${output}")
    list(TRANSFORM components REPLACE "component " "")
    set(FOUND_COMPONENTS "${components}" PARENT_SCOPE)
    # CMake breaks its lines where it likes.
    string(REGEX REPLACE "[ \n]+" " " output "${output}")
    foreach(text IN LISTS ARGN)
        string(FIND "${output}" "${text}" found)
        if(found EQUAL -1)
            message(FATAL_ERROR "It does not say \"${text}\"")
        endif()
    endforeach()
endfunction()

# load_components(prefix components [variable=value...]): loads the designer's plugin, the Python
# package and the program that are installed below the prefix, each with the library there, in an
# environment with these variables and no other way to the library.
function(load_components prefix components)
    set(in_environment "${CMAKE_COMMAND}" -E env --unset=LD_LIBRARY_PATH --unset=PYTHONPATH ${ARGN})
    if("application" IN_LIST components)
        run(${in_environment} "${prefix}/bin/orvquery" --version)
    endif()
    if("designer" IN_LIST components)
        file(GLOB_RECURSE plugin "${prefix}/*orvquerybuilderplugin.so")
        build_host("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/plugin" "${SCRATCH_DIR}/plugin")
        find_program(host load_plugin PATHS "${SCRATCH_DIR}/plugin" "${SCRATCH_DIR}/plugin/${CONFIG}"
            NO_DEFAULT_PATH NO_CACHE REQUIRED)
        run(${in_environment} "${host}" "${plugin}" "${prefix}")
    endif()
    if("python" IN_LIST components)
        file(GLOB_RECURSE package "${prefix}/__init__.py")
        cmake_path(GET package PARENT_PATH package)
        cmake_path(GET package PARENT_PATH folder)
        run(${in_environment} "PYTHONPATH=${folder}" PYTHONDONTWRITEBYTECODE=1
            "${PYTHON}" "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/load_package.py" "${prefix}")
    endif()
endfunction()
