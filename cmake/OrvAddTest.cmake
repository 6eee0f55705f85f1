# Reads the headers of Qt that nearly every test includes once for all of them: with them a test
# compiles more than twice as fast. Those of QtTest differ from folder to folder by their macros.
# Library and program do without, so that each of their files has to include what it needs.
function(orv_precompile_for_tests)
    set(source "${PROJECT_BINARY_DIR}/test_headers.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "")
    add_library(orv_test_headers OBJECT "${source}")
    target_link_libraries(orv_test_headers PRIVATE Orv::QueryBuilder)
    target_precompile_headers(orv_test_headers PRIVATE
        <QtCore/QtCore> <QtGui/QtGui> <QtWidgets/QtWidgets>
        <algorithm> <functional> <memory> <optional> <vector>)
endfunction()

# orv_add_test(name source... [LIBS library...] [LABELS label...] [TIMEOUT seconds] [MISSING what]
#              [WINDOW_MANAGER])
#
# Makes a QtTest program and registers it under its name. It runs without a display and writes
# nowhere but below the build folder. A test labelled "xvfb" runs in a virtual X server of its own
# instead, for what only a real display shows: drag and drop, focus, window managers. With
# WINDOW_MANAGER one runs in that server, and the test has the pointer and the keys of xdotool.
# Where something MISSING is named, the program is made, but not registered. Its folder may have
# labels for all of its tests in ORV_TEST_LABELS.
function(orv_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WINDOW_MANAGER" "TIMEOUT;MISSING" "LIBS;LABELS")
    if(NOT arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "orv_add_test(${name}): no sources")
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    if(ORV_SANITIZE)
        math(EXPR arg_TIMEOUT "${arg_TIMEOUT} * 5")
    endif()

    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE Orv::QueryBuilder Qt6::Test ${arg_LIBS})
    if(NOT TARGET orv_test_headers)
        orv_precompile_for_tests()
    endif()
    target_precompile_headers(${name} REUSE_FROM orv_test_headers)
    if(ORV_CCACHE)
        # It keeps nothing that was compiled with precompiled headers unless it is told to.
        set_target_properties(${name} PROPERTIES CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND};-E;env;\
CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime;${ORV_CCACHE}")
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            target_compile_options(${name} PRIVATE -fpch-preprocess)
        endif()
    endif()

    set(command $<TARGET_FILE:${name}>)
    set(platform offscreen)
    if("xvfb" IN_LIST arg_LABELS)
        set(tools xvfb-run)
        if(arg_WINDOW_MANAGER)
            list(APPEND tools openbox xdotool)
            list(PREPEND command "${PROJECT_SOURCE_DIR}/tests/xvfb/with-openbox")
        endif()
        foreach(tool IN LISTS tools)
            string(MAKE_C_IDENTIFIER "ORV_${tool}" variable)
            string(TOUPPER "${variable}" variable)
            find_program(${variable} ${tool})
            mark_as_advanced(${variable})
            if(NOT ${variable})
                set(arg_MISSING ${tool})
            endif()
        endforeach()
        list(PREPEND command "${ORV_XVFB_RUN}" -a -s "-screen 0 1280x900x24 -dpi 96")
        set(platform xcb)
    endif()
    if(arg_MISSING)
        message(STATUS "Test ${name} is left out: ${arg_MISSING} was not found")
        return()
    endif()

    add_test(NAME ${name} COMMAND ${command})
    orv_set_test_environment(${name} ${platform} ${arg_TIMEOUT})
    list(APPEND arg_LABELS ${ORV_TEST_LABELS})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}")
endfunction()

# Gives a registered test its own home and the same surroundings on every machine; CTest ends it
# after so many seconds.
function(orv_set_test_environment name platform timeout)
    math(EXPR function_timeout_ms "(${timeout} - 20) * 1000")
    set(home "${PROJECT_BINARY_DIR}/test-home/${name}")
    file(MAKE_DIRECTORY "${home}/run")
    # Qt refuses a runtime folder that others may enter.
    file(CHMOD "${home}/run" DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

    set(environment
        "QT_QPA_PLATFORM=set:${platform}"
        "HOME=set:${home}"
        "XDG_RUNTIME_DIR=set:${home}/run"
        "XDG_CONFIG_HOME=unset:"
        "XDG_DATA_HOME=unset:"
        "XDG_CACHE_HOME=unset:"
        "LC_ALL=set:C.UTF-8"
        "WAYLAND_DISPLAY=unset:"
        "QT_QPA_PLATFORMTHEME=unset:"
        "QT_STYLE_OVERRIDE=unset:"
        "QT_SCALE_FACTOR=unset:"
        "QT_FONT_DPI=unset:"
        # A dialog that nobody answers ends the test function, not the patience of CTest.
        "QTEST_FUNCTION_TIMEOUT=set:${function_timeout_ms}")
    if(ORV_SANITIZE)
        list(APPEND environment
            "ASAN_OPTIONS=set:detect_leaks=1"
            "LSAN_OPTIONS=set:suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0"
            "UBSAN_OPTIONS=set:print_stacktrace=1")
    endif()
    set_tests_properties(${name} PROPERTIES ENVIRONMENT_MODIFICATION "${environment}")
endfunction()
