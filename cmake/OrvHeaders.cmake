# An install script includes it too, where no policies are set.
cmake_policy(VERSION 3.25)

# orv_write_headers(source_dir destination headers)
#
# Writes the headers that hosts see to <destination>/orvquerybuilder: those of include/ and what they
# include, one folder for each of src/, and sets the variable named by `headers` to the files that
# were read. Includes become relative ("../core/Error.h"): folders called core or data would clash
# with those of a host if they were on its include path.
function(orv_write_headers source_dir destination headers)
    set(target "${destination}/orvquerybuilder")
    file(GLOB pending RELATIVE "${source_dir}/include/orvquerybuilder"
        "${source_dir}/include/orvquerybuilder/*.h")
    set(read "")
    set(written "")
    while(pending)
        list(POP_FRONT pending header)
        if(header IN_LIST written)
            continue()
        endif()
        list(APPEND written "${header}")
        if(header MATCHES "/")
            set(file "${source_dir}/src/${header}")
            set(way "../")
        else()
            set(file "${source_dir}/include/orvquerybuilder/${header}")
            set(way "")
        endif()
        if(header MATCHES "_p\\.h$" OR NOT EXISTS "${file}")
            message(FATAL_ERROR "A header for hosts includes \"${header}\", which is not for them")
        endif()
        list(APPEND read "${file}")

        file(READ "${file}" text)
        string(REGEX MATCHALL "#include \"[^\"]+\"" includes "${text}")
        list(TRANSFORM includes REPLACE "#include \"(.*)\"" "\\1")
        list(APPEND pending ${includes})
        string(REGEX REPLACE "#include \"" "#include \"${way}" text "${text}")
        # A file that stays as it was keeps its time, and what includes it is not compiled again.
        set(old "")
        if(EXISTS "${target}/${header}")
            file(READ "${target}/${header}" old)
        endif()
        if(NOT text STREQUAL old)
            file(WRITE "${target}/${header}" "${text}")
        endif()
    endwhile()

    # What an earlier version wrote and this one has no more.
    file(GLOB_RECURSE present RELATIVE "${target}" "${target}/*.h")
    foreach(header IN LISTS present)
        if(NOT header IN_LIST written)
            file(REMOVE "${target}/${header}")
        endif()
    endforeach()
    set(${headers} "${read}" PARENT_SCOPE)
endfunction()
