# Asks for the package in ways that it must refuse, and in ways that it must not.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

# request(arguments [text...]): find_package(OrvQueryBuilder <arguments>) fails and says all of the
# texts; without texts it succeeds.
function(request arguments)
    file(REMOVE_RECURSE "${SCRATCH_DIR}")
    file(WRITE "${SCRATCH_DIR}/CMakeLists.txt"
        "cmake_minimum_required(VERSION 3.25)\n"
        "project(Request LANGUAGES CXX)\n"
        "find_package(OrvQueryBuilder ${arguments})\n"
        "message(\"found: \${OrvQueryBuilder_FOUND}\")\n")
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
    # CMake breaks its lines where it likes.
    string(REGEX REPLACE "[ \n]+" " " output "${output}")
    foreach(text IN LISTS ARGN)
        string(FIND "${output}" "${text}" found)
        if(found EQUAL -1)
            message(FATAL_ERROR "It does not say \"${text}\"")
        endif()
    endforeach()
endfunction()

request("REQUIRED")
request("${VERSION} EXACT REQUIRED COMPONENTS runtime development")
request("0.1 REQUIRED OPTIONAL_COMPONENTS designer")
request("0.2 REQUIRED"
    "compatible with requested version \"0.2\"" "OrvQueryBuilderConfig.cmake, version: ${VERSION}")
request("0.0 REQUIRED"
    "compatible with requested version \"0.0\"" "OrvQueryBuilderConfig.cmake, version: ${VERSION}")
request("1.0 REQUIRED"
    "compatible with requested version \"1.0\"" "OrvQueryBuilderConfig.cmake, version: ${VERSION}")
request("0.1.99 REQUIRED"
    "compatible with requested version \"0.1.99\"" "OrvQueryBuilderConfig.cmake, version: ${VERSION}")
request("REQUIRED COMPONENTS Widgets"
    "OrvQueryBuilder has no component \"Widgets\""
    "runtime, development, application and designer")
# It was not installed here.
request("REQUIRED COMPONENTS application"
    "The component \"application\" of OrvQueryBuilder is not installed")
