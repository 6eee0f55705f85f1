# What the fuzzers and the test that runs their targets are made of.
set(ORV_FUZZ_FOLDER "${CMAKE_CURRENT_LIST_DIR}")
set(ORV_FUZZ_SOURCES
    "${CMAKE_CURRENT_LIST_DIR}/FuzzTarget.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/FuzzTarget.h"
    "${CMAKE_CURRENT_LIST_DIR}/ByteReader.h"
    "${CMAKE_CURRENT_LIST_DIR}/ConditionsTarget.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/DocumentsTarget.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/FuzzBuilders.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/FuzzBuilders.h"
    "${CMAKE_CURRENT_LIST_DIR}/JsonEdits.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/JsonEdits.h"
    "${CMAKE_CURRENT_LIST_DIR}/OperatorsTarget.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/ParserTarget.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/RoundTripTarget.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/StatementWords.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/StatementWords.h"
    "${CMAKE_CURRENT_LIST_DIR}/Targets.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/Targets.h"
    "${PROJECT_SOURCE_DIR}/tests/sqlcases/SqlCaseFile.cpp"
    "${PROJECT_SOURCE_DIR}/tests/sqlcases/SqlCaseFile.h"
    "${PROJECT_SOURCE_DIR}/tests/support/RandomTexts.cpp"
    "${PROJECT_SOURCE_DIR}/tests/support/RandomTexts.h"
    "${PROJECT_SOURCE_DIR}/tests/support/StateText.cpp"
    "${PROJECT_SOURCE_DIR}/tests/support/StateText.h"
    "${PROJECT_SOURCE_DIR}/tests/support/WayBack.cpp"
    "${PROJECT_SOURCE_DIR}/tests/support/WayBack.h")

function(orv_set_fuzz_surroundings target)
    target_include_directories(${target} PUBLIC
        "${ORV_FUZZ_FOLDER}" "${PROJECT_SOURCE_DIR}/tests" "${PROJECT_SOURCE_DIR}/app")
    target_compile_definitions(${target} PRIVATE
        ORV_SQL_CASES="${PROJECT_SOURCE_DIR}/tests/data/sql")
    target_link_libraries(${target} PUBLIC Orv::QueryBuilder Qt6::Test)
endfunction()
