# Asks for the package in ways that it must refuse, and in ways that it must not.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

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
