# Strips debugging symbols from every program and library in a package folder.
file(GLOB_RECURSE binaries ${STAGE}/*.exe ${STAGE}/*.dll)
foreach(binary IN LISTS binaries)
    execute_process(COMMAND ${STRIP} --strip-unneeded ${binary} RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "Cannot strip ${binary}")
    endif()
endforeach()
