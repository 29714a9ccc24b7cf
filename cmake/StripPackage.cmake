# Strips debugging symbols from every program and library in a package folder:
# STAGE with STRIP, or as a CPack pre-build script, the installer's staging
# folder with CPACK_TALLYROOT_STRIP.
if(NOT STAGE)
    set(STAGE ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
    set(STRIP ${CPACK_TALLYROOT_STRIP})
endif()
file(GLOB_RECURSE binaries ${STAGE}/*.exe ${STAGE}/*.dll)
foreach(binary IN LISTS binaries)
    execute_process(COMMAND ${STRIP} --strip-unneeded ${binary} RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "Cannot strip ${binary}")
    endif()
endforeach()
