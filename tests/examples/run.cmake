# Runs the example NAME, the program of this build or of FOLDER, and compares the statement that it
# prints, blanks aside.

cmake_policy(VERSION 3.25)

function(in_one_line variable text)
    string(REGEX REPLACE "[ \r\n]+" " " text "${text}")
    string(REPLACE " )" ")" text "${text}")
    string(STRIP "${text}" text)
    set(${variable} "${text}" PARENT_SCOPE)
endfunction()

execute_process(COMMAND "${PROGRAM}" --print
    OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
file(READ "${CMAKE_CURRENT_LIST_DIR}/${NAME}.sql" expected)
in_one_line(printed "${printed}")
in_one_line(expected "${expected}")
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "It prints\n${printed}\nand not\n${expected}")
endif()
