# The Debian packages that cpack makes, one of each component. The target Packages builds what they are made of first.
# The libraries that they depend on are those of this machine or, built for another processor, those of its sysroot.
add_custom_target(Packages COMMAND ${CMAKE_CPACK_COMMAND} --config ${PROJECT_BINARY_DIR}/CPackConfig.cmake)
add_dependencies(Packages labsh)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development documentation)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_CONTACT "LabShell authors <labshell@users.noreply.invalid>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
if(CMAKE_CROSSCOMPILING)
    execute_process(COMMAND dpkg-architecture -f -t ${CMAKE_CXX_LIBRARY_ARCHITECTURE} -q DEB_HOST_ARCH
        OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE)
    foreach(folder IN ITEMS lib usr/lib)
        list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
            ${CMAKE_SYSROOT}/${folder}/${CMAKE_CXX_LIBRARY_ARCHITECTURE})
    endforeach()
endif()
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/Finish.cmake)
set(CPACK_PROJECT_SOURCE_DIR ${PROJECT_SOURCE_DIR}) # for the script

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME labsh)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION science)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "bench shell of a laboratory instrument
Runs command lines and scripts of a laboratory instrument on a desk, with an
instrument whose settings, status values, counters and events can be looked
at and set. Expressions are evaluated by a plug-in, scripts are checked
before they run, and editors are served by the language server protocol.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS labsh-doc)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblabshell-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "headers of the bench shell, for plug-ins and programs
What plug-ins for labsh are built with, and programs that evaluate expressions:
headers, and files for CMake and pkg-config.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "labsh (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS labsh-doc)

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME labsh-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION "documents and examples of the bench shell
A tutorial, the language, the commands and the errors of labsh, scripts to
start from, and examples of a plug-in and of a program that evaluates
expressions.")

# For the one version of Python that the module is built for.
if(TARGET PythonModule)
    add_dependencies(Packages PythonModule)
    list(APPEND CPACK_COMPONENTS_ALL python)
    foreach(part IN ITEMS MAJOR MINOR)
        get_directory_property(${part} DIRECTORY ${PROJECT_SOURCE_DIR}/Python DEFINITION Python3_VERSION_${part})
    endforeach()
    math(EXPR next "${MINOR} + 1")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-labshell)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    set(CPACK_DEBIAN_PYTHON_DESCRIPTION "expressions and commands of the bench shell, from Python
Evaluates expressions and runs command lines and scripts of a laboratory
instrument in the process of Python, with values, exceptions and tables that
are Python's. Functions written in Python can be called by expressions.")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
        "labsh (= ${PROJECT_VERSION}), python3 (>= ${MAJOR}.${MINOR}), python3 (<< ${MAJOR}.${next}~)")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS labsh-doc)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/prerm)
endif()

include(CPack)
