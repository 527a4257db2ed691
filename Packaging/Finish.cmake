# Run by cpack before it packs what has been installed for each package: adds what Debian wants of every package, its
# licence and its changes, and compresses the pages of the manual.

# Tells dpkg-shlibdeps, which cpack runs next, whose libraries and whose objdump to look with.
if(CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
    set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
endif()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
    set(documents ${share}/doc/${package})
    file(MAKE_DIRECTORY ${documents})
    configure_file(${CPACK_PROJECT_SOURCE_DIR}/LICENSE ${documents}/copyright COPYONLY)

    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
    file(WRITE ${documents}/changelog "${package} (${CPACK_PACKAGE_VERSION}) stable; urgency=medium

  * What changed stands in /usr/share/doc/labsh/CHANGELOG.md of labsh-doc.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
    file(GLOB pages ${share}/man/man1/*.1)
    execute_process(COMMAND gzip -9nf ${documents}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# Few starts of the shell are at a terminal: the line editor comes from archives, so that the others load none.
file(WRITE ${CPACK_TEMPORARY_DIRECTORY}/runtime/usr/share/lintian/overrides/labsh "labsh: embedded-library ncurses *\n")
