# Run by CPack on the folder of files to be packaged: changes them to the form that Debian
# requires.
find_program(gzip gzip REQUIRED)
# Without it, CPack makes a package without dependencies and only prints a notice.
find_program(shlibdeps dpkg-shlibdeps REQUIRED)

set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(documents ${share}/doc/zorvel)

# The licence is in the file "copyright", and the README is about building the program.
file(REMOVE ${documents}/LICENSE ${documents}/README.md)
file(COPY_FILE ${CPACK_ZORVEL_DEBIAN}/copyright ${documents}/copyright)
file(COPY_FILE ${CPACK_ZORVEL_DEBIAN}/changelog ${documents}/changelog)
file(MAKE_DIRECTORY ${share}/doc-base)
file(COPY_FILE ${CPACK_ZORVEL_DEBIAN}/doc-base ${share}/doc-base/zorvel)

# Independent of the umask of the user who makes the package.
set(readable OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
file(CHMOD ${documents}/copyright ${documents}/changelog ${share}/doc-base/zorvel
     PERMISSIONS ${readable})
file(CHMOD_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr
     DIRECTORY_PERMISSIONS ${readable} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)

file(GLOB manuals ${share}/man/man1/*.1)
if(NOT manuals)
  message(FATAL_ERROR "There are no man pages to compress.")
endif()
execute_process(COMMAND ${gzip} -n -9 -f ${manuals} ${documents}/changelog
                COMMAND_ERROR_IS_FATAL ANY)
