# For the Windows build: every executable goes to bin/, and the Qt libraries,
# the Qt plugins and the mingw-w64 runtime are copied beside them, so each .exe
# runs as it is, under Wine or on Windows.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

set(TALLYROOT_QT_LIBRARIES Qt6::Core Qt6::Gui Qt6::Widgets)
if(TALLYROOT_BUILD_TESTS)
    list(APPEND TALLYROOT_QT_LIBRARIES Qt6::Test)
endif()
set(TALLYROOT_QT_PLUGIN_FOLDERS platforms styles imageformats)

set(TALLYROOT_MINGW_RUNTIME)
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${path}")
        # The compiler knows its own runtime; the thread library sits in the sysroot.
        set(path /usr/x86_64-w64-mingw32/lib/${dll})
    endif()
    if(NOT EXISTS "${path}")
        message(FATAL_ERROR "mingw-w64 runtime library not found: ${dll}")
    endif()
    list(APPEND TALLYROOT_MINGW_RUNTIME ${path})
endforeach()

set(plugin_root ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_PLUGINS})
set(copy_commands)
foreach(library IN LISTS TALLYROOT_QT_LIBRARIES)
    list(APPEND copy_commands COMMAND ${CMAKE_COMMAND} -E copy_if_different
         $<TARGET_FILE:${library}> ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endforeach()
foreach(folder IN LISTS TALLYROOT_QT_PLUGIN_FOLDERS)
    list(APPEND copy_commands COMMAND ${CMAKE_COMMAND} -E copy_directory
         ${plugin_root}/${folder} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${folder})
endforeach()
add_custom_target(windows_runtime ALL
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    ${copy_commands}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${TALLYROOT_MINGW_RUNTIME}
            ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    COMMENT "Copying the Qt and mingw-w64 runtime beside the executables"
    VERBATIM)

# The portable package: a zip of the programs and everything they need.
function(tallyroot_windows_package)
    set(name Tallyroot-${PROJECT_VERSION}-windows-x64)
    set(stage ${CMAKE_BINARY_DIR}/package/${name})
    set(bin ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    set(files Qt6Core.dll Qt6Gui.dll Qt6Widgets.dll)
    foreach(path IN LISTS TALLYROOT_MINGW_RUNTIME)
        get_filename_component(dll ${path} NAME)
        list(APPEND files ${dll})
    endforeach()
    list(APPEND files user-guide.html)
    list(TRANSFORM files PREPEND ${bin}/)
    foreach(program IN LISTS ARGN)
        list(APPEND files $<TARGET_FILE:${program}>)
    endforeach()
    set(folders)
    foreach(folder IN LISTS TALLYROOT_QT_PLUGIN_FOLDERS)
        list(APPEND folders COMMAND ${CMAKE_COMMAND} -E copy_directory ${bin}/${folder}
             ${stage}/${folder})
    endforeach()
    add_custom_target(windows_package
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${stage}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${stage}
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${files} ${stage}
        ${folders}
        COMMAND ${CMAKE_COMMAND} -DSTAGE=${stage} -DSTRIP=${CMAKE_STRIP}
                -P ${PROJECT_SOURCE_DIR}/cmake/StripPackage.cmake
        COMMAND ${CMAKE_COMMAND} -E chdir ${CMAKE_BINARY_DIR}/package
                ${CMAKE_COMMAND} -E tar cf ${CMAKE_BINARY_DIR}/${name}.zip --format=zip ${name}
        DEPENDS windows_runtime ${ARGN}
        COMMENT "Packing ${name}.zip"
        VERBATIM)
endfunction()
