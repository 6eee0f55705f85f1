# Adds the project to a host as it comes, without building it: what does the host get?

include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

file(REMOVE_RECURSE "${SCRATCH_DIR}" "${PREFIX}")
configure_command(command "${CMAKE_CURRENT_LIST_DIR}/subproject" "${SCRATCH_DIR}"
    "-DORV_SOURCE_DIR=${SOURCE_DIR}")
run(${command})

# Nothing is built, so any rule that installs a library would fail, and others leave files.
run("${CMAKE_COMMAND}" --install "${SCRATCH_DIR}" --config "${CONFIG}" --prefix "${PREFIX}")
file(GLOB_RECURSE installed "${PREFIX}/*")
if(installed)
    message(FATAL_ERROR "The host would install ${installed}")
endif()
