# orv_add_test(name source... [LIBS library...] [LABELS label...] [TIMEOUT seconds] [WINDOW_MANAGER])
#
# Makes a QtTest program and registers it under its name. It runs without a display and writes
# nowhere but below the build folder. A test labelled "xvfb" runs in a virtual X server of its own
# instead, for what only a real display shows: drag and drop, focus, window managers. With
# WINDOW_MANAGER one runs in that server, and the test has the pointer and the keys of xdotool.
function(orv_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WINDOW_MANAGER" "TIMEOUT" "LIBS;LABELS")
    if(NOT arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "orv_add_test(${name}): no sources")
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()

    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE Orv::QueryBuilder Qt6::Test ${arg_LIBS})

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
                message(STATUS "Test ${name} is left out: ${tool} was not found")
                return()
            endif()
        endforeach()
        list(PREPEND command "${ORV_XVFB_RUN}" -a -s "-screen 0 1280x900x24 -dpi 96")
        set(platform xcb)
    endif()

    add_test(NAME ${name} COMMAND ${command})
    orv_set_test_environment(${name} ${platform})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}")
endfunction()

# Gives a registered test its own home and the same surroundings on every machine.
function(orv_set_test_environment name platform)
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
        "QTEST_FUNCTION_TIMEOUT=set:100000")
    if(ORV_SANITIZE)
        list(APPEND environment
            "ASAN_OPTIONS=set:detect_leaks=1"
            "LSAN_OPTIONS=set:suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0"
            "UBSAN_OPTIONS=set:print_stacktrace=1")
    endif()
    set_tests_properties(${name} PROPERTIES ENVIRONMENT_MODIFICATION "${environment}")
endfunction()
