# Makes a Debian package, before cpack packs it, one by Debian's rules: the names and the compression
# of its documents, programs without a word on the compiler, and folders that everybody may enter,
# whatever the umask is.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
file(RENAME ${share}/doc/conntester/CHANGELOG.md ${share}/doc/conntester/changelog)
file(GLOB documents ${share}/man/man*/* ${share}/doc/conntester/changelog*)
execute_process(COMMAND gzip --best --no-name ${documents} COMMAND_ERROR_IS_FATAL ANY)
file(GLOB programs
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/bin/connWatch
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/libexec/connTester/connTester
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/libexec/connTester/*-adapter/*)
execute_process(COMMAND strip --remove-section=.comment ${programs} COMMAND_ERROR_IS_FATAL ANY)
file(CHMOD_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY} DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
