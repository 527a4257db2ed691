# labshell_add_checksum(<plug-in>): leaves in the plug-in's file the checksum of all that is loaded of it, by which the
# shell refuses a file that has been damaged. For the source tree and for those who find_package(LabShell).
function(labshell_add_checksum plugin)
    set(checksum ${CMAKE_CURRENT_BINARY_DIR}/${plugin}.checksum)
    add_custom_command(TARGET ${plugin} POST_BUILD
        COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:LabShell::PluginChecksum> $<TARGET_FILE:${plugin}> > ${checksum}
        COMMAND ${CMAKE_OBJCOPY} --add-section .ov.checksum=${checksum} $<TARGET_FILE:${plugin}>
        VERBATIM)
    # To edit the path at the install would be damage.
    set_target_properties(${plugin} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
endfunction()

# LLVM's strip, which an install would run, throws away the sections that are not loaded into memory.
if(CMAKE_STRIP MATCHES llvm)
    find_program(LABSHELL_STRIP NAMES ${CMAKE_CXX_LIBRARY_ARCHITECTURE}-strip strip REQUIRED)
    set(CMAKE_STRIP ${LABSHELL_STRIP})
endif()
