# make_plugin(<library> [<argument of install>...]): makes a library a plug-in, which exports what Exports.map says, has a
# checksum, and is installed beside libHost.so.
function(make_plugin plugin)
    set(exports ${PROJECT_SOURCE_DIR}/Common/Exports.map)
    target_link_options(${plugin} PRIVATE LINKER:--version-script=${exports})
    set_property(TARGET ${plugin} APPEND PROPERTY LINK_DEPENDS ${exports})
    set_target_properties(${plugin} PROPERTIES PREFIX "" SUFFIX .dll INSTALL_RPATH $ORIGIN)
    labshell_add_checksum(${plugin})
    install(TARGETS ${plugin} ${ARGN} LIBRARY DESTINATION ${LABSH_LIBRARY_FOLDER} COMPONENT runtime)
endfunction()
