# A host that takes the library into its own build, static, and installs it from there. One unity
# build serves all that is tested with it.

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_host("${CMAKE_CURRENT_LIST_DIR}/fetch" "${SCRATCH_DIR}"
    "-DORV_SOURCE_DIR=${SOURCE_DIR}" -DORV_STATIC=ON -DORV_INSTALL=ON -DCMAKE_UNITY_BUILD=ON)
run_host("${SCRATCH_DIR}")

file(REMOVE_RECURSE "${PREFIX}")
install_components("${SCRATCH_DIR}" "${PREFIX}" runtime development)
file(GLOB_RECURSE shared "${PREFIX}/*.so*" "${PREFIX}/*.dll" "${PREFIX}/*.dylib")
if(shared)
    message(FATAL_ERROR "A static build installs ${shared}")
endif()
