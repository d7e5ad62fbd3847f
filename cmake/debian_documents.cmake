# Names and compresses the documents of a Debian package by Debian's rules, before cpack packs them.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
file(RENAME ${share}/doc/conntester/CHANGELOG.md ${share}/doc/conntester/changelog)
file(GLOB documents ${share}/man/man*/* ${share}/doc/conntester/changelog*)
execute_process(COMMAND gzip --best --no-name ${documents} COMMAND_ERROR_IS_FATAL ANY)
