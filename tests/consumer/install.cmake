# Installs the library for the tests that follow, and takes the folder elsewhere: a package must not
# know where it was made.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

file(REMOVE_RECURSE "${PREFIX}" "${PREFIX}-first")
install_components("${BUILD_DIR}" "${PREFIX}-first" runtime development)

file(GLOB_RECURSE files RELATIVE "${PREFIX}-first" "${PREFIX}-first/*")
foreach(file IN LISTS files)
    if(file MATCHES "_p\\.h$|\\.cpp$|/CMakeLists\\.txt$")
        message(FATAL_ERROR "${file} is installed, but it is not for hosts")
    endif()
    if(file MATCHES "\\.(cmake|h)$")
        file(READ "${PREFIX}-first/${file}" text)
        foreach(place IN ITEMS "${PREFIX}" "${BUILD_DIR}" "${SOURCE_DIR}")
            string(FIND "${text}" "${place}" found)
            if(NOT found EQUAL -1)
                message(FATAL_ERROR "${file} names the folder ${place}")
            endif()
        endforeach()
    endif()
endforeach()

file(RENAME "${PREFIX}-first" "${PREFIX}")
