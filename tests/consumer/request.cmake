# Asks for the package in ways that it must refuse, and in ways that it must not.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

request("REQUIRED")
request("${VERSION} EXACT REQUIRED COMPONENTS runtime development")
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" minor_version "${VERSION}")
set(major ${CMAKE_MATCH_1})
set(minor ${CMAKE_MATCH_2})
math(EXPR next_major "${major} + 1")
math(EXPR previous_major "${major} - 1")
math(EXPR next_minor "${minor} + 1")
request("${major} REQUIRED")
request("${minor_version} REQUIRED OPTIONAL_COMPONENTS designer")
foreach(refused IN ITEMS ${next_major} ${previous_major}.${minor} ${major}.${next_minor}
        ${minor_version}.99)
    request("${refused} REQUIRED"
        "compatible with requested version \"${refused}\""
        "OrvQueryBuilderConfig.cmake, version: ${VERSION}")
endforeach()
request("REQUIRED COMPONENTS Widgets"
    "OrvQueryBuilder has no component \"Widgets\""
    "runtime, development, application, designer and python")
# Who can do without a component does without one that nobody knows, too.
request("REQUIRED COMPONENTS runtime OPTIONAL_COMPONENTS designer Widgets python")
if(NOT FOUND_COMPONENTS STREQUAL "runtime;development")
    message(FATAL_ERROR "These components count as found: ${FOUND_COMPONENTS}")
endif()
# It was not installed here.
request("REQUIRED COMPONENTS application"
    "The component \"application\" of OrvQueryBuilder is not installed")
request("REQUIRED COMPONENTS python"
    "The component \"python\" of OrvQueryBuilder is not installed")
