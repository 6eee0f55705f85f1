# How every target below the including folder is compiled. These are settings of the folder, so they
# never reach a host that adds this project to its own build.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(PROJECT_IS_TOP_LEVEL)
    if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
        set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
    endif()
    # clang-tidy and editors read it.
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    find_program(ORV_CCACHE ccache)
    mark_as_advanced(ORV_CCACHE)
    if(ORV_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${ORV_CCACHE}")
    endif()
endif()

# Our headers must not depend on the words signals, slots and emit being free or taken.
add_compile_definitions(QT_NO_KEYWORDS)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    add_compile_options(-Wall -Wextra -Wpedantic -Wnon-virtual-dtor)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Not of members: the control's interface names parameters as it names members.
        add_compile_options(-Wshadow=local -Woverloaded-virtual)
    else()
        # Clang means names that are fixed, too: a function of ours beside a virtual one of Qt.
        add_compile_options(-Wno-overloaded-virtual)
    endif()
    if(ORV_DEVELOPER)
        add_compile_options(-Werror)
    endif()
elseif(MSVC)
    add_compile_options(/W4)
    if(ORV_DEVELOPER)
        add_compile_options(/WX)
    endif()
endif()

if(ORV_DEVELOPER)
    # The build types of the presets optimise, and Qt drops Q_ASSERT there unless told otherwise.
    add_compile_definitions(QT_FORCE_ASSERTS)
endif()

if(ORV_SANITIZE)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        message(FATAL_ERROR "ORV_SANITIZE needs GCC or Clang")
    endif()
    set(ORV_SANITIZE_FLAGS -fsanitize=address,undefined)
    add_compile_options(${ORV_SANITIZE_FLAGS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(${ORV_SANITIZE_FLAGS})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # GCC reports variables of its own checks here.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()

if(ORV_BUILD_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "ORV_BUILD_FUZZ needs Clang")
    endif()
    # Counts what a run goes through; the fuzzers themselves link the rest. Watching comparisons
    # too takes a third of the time, and the dictionary has the words that they would find.
    add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()
