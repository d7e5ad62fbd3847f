# What `cmake --install` puts where, and the Debian package that `cpack` makes of it.
#
# Components: "program" is all that stands under the prefix, "machine" what makes the installation
# work without a package manager (the fixed paths, the uninstall command), "debian" what only the
# package holds.
include(GNUInstallDirs)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME program)

set(programs ${CMAKE_INSTALL_LIBEXECDIR}/connTester)
set(data ${CMAKE_INSTALL_DATADIR}/connTester)
set(documents ${CMAKE_INSTALL_DATADIR}/doc/conntester)
set(completions ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# Scripts find their neighbours by relative paths, so that `--prefix` and DESTDIR need nothing more.
file(RELATIVE_PATH PROGRAMS_FROM_BIN /${CMAKE_INSTALL_BINDIR} /${programs})
file(RELATIVE_PATH DATA_FROM_PROGRAMS /${programs} /${data})
file(RELATIVE_PATH PREFIX_FROM_PROGRAMS /${programs} /)
# What makes the hourly runs, and how it ends when a run has been made, or left out beside another.
if(TARGET connWatch)
  set(RUN_COMMAND "connWatch run")
  set(RUN_STATUSES "1 2 75")
  set(RUN_MANUALS "man:connWatch(1) man:connTester(1)")
else()
  set(RUN_COMMAND "connTester")
  set(RUN_STATUSES "75")
  set(RUN_MANUALS "man:connTester(1)")
endif()
string(REGEX REPLACE "[^ ]+" "    <string>\\0</string>" RUN_COMMAND_OF_AGENT ${RUN_COMMAND})
string(REPLACE "> " ">\n" RUN_COMMAND_OF_AGENT ${RUN_COMMAND_OF_AGENT})
foreach(file cron/connTester.crontab launchd/connTester.plist systemd/connTester@.service)
  configure_file(packaging/${file}.in packaging/${file} @ONLY)
endforeach()
configure_file(packaging/start-command.in packaging/connTester @ONLY)
configure_file(packaging/fixed-paths.in packaging/fixed-paths @ONLY)
configure_file(packaging/uninstall.in packaging/uninstall @ONLY)

set(folders
  ${CMAKE_INSTALL_BINDIR} ${programs}/ping-adapter ${programs}/iperf3-adapter ${data}
  ${documents}/docs lib/systemd/user ${CMAKE_INSTALL_MANDIR}/man1 ${CMAKE_INSTALL_MANDIR}/man5)
if(TARGET connWatch)
  # connWatch finds them from the start command, too.
  target_compile_definitions(watch_parts PRIVATE PROGRAMS_FROM_BIN="${PROGRAMS_FROM_BIN}")
  list(APPEND folders ${completions})
endif()
configure_file(cmake/start_install.cmake.in packaging/start_install.cmake @ONLY)
install(SCRIPT ${CMAKE_CURRENT_BINARY_DIR}/packaging/start_install.cmake COMPONENT machine)

install(PROGRAMS ${CMAKE_CURRENT_BINARY_DIR}/packaging/connTester TYPE BIN)
install(TARGETS connTester DESTINATION ${programs})
if(TARGET ping_adapter)
  install(TARGETS ping_adapter DESTINATION ${programs}/ping-adapter)
  install(TARGETS iperf3_adapter DESTINATION ${programs}/iperf3-adapter)
endif()
if(TARGET connWatch)
  install(TARGETS connWatch)
  install(FILES man/connWatch.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES packaging/bash-completion/connWatch DESTINATION ${completions})
endif()
install(PROGRAMS packaging/in-session ${CMAKE_CURRENT_BINARY_DIR}/packaging/fixed-paths
  DESTINATION ${programs})
install(FILES
  packaging/connTester.conf
  packaging/systemd/locked-down.conf
  ${CMAKE_CURRENT_BINARY_DIR}/packaging/cron/connTester.crontab
  ${CMAKE_CURRENT_BINARY_DIR}/packaging/launchd/connTester.plist
  DESTINATION ${data})
install(FILES
  packaging/systemd/connTester@.timer
  ${CMAKE_CURRENT_BINARY_DIR}/packaging/systemd/connTester@.service
  DESTINATION lib/systemd/user)
install(FILES man/connTester.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES man/connTester.conf.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
# With all that they lead to.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${documents})
install(FILES
  docs/architecture.md
  docs/files.md
  docs/macos.md
  docs/performance.md
  docs/reliability.md
  docs/report.png
  DESTINATION ${documents}/docs)

install(PROGRAMS ${CMAKE_CURRENT_BINARY_DIR}/packaging/uninstall DESTINATION ${programs}
  COMPONENT machine)
configure_file(cmake/finish_install.cmake.in packaging/finish_install.cmake @ONLY)
install(SCRIPT ${CMAKE_CURRENT_BINARY_DIR}/packaging/finish_install.cmake COMPONENT machine)

install(FILES packaging/debian/changelog DESTINATION ${documents} RENAME changelog.Debian
  COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES packaging/debian/copyright DESTINATION ${documents}
  COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME conntester)
set(CPACK_PACKAGE_CONTACT "connTester maintainers <conntester@packages.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "one-shot tester of a network connection")
set(CPACK_PACKAGE_DESCRIPTION
"connTester measures the link to a test server, once: the latency with ping,
the rates of both directions with iperf3. It ends with one result line and
keeps dated histories. Units for a run every hour are included.")
if(TARGET connWatch)
  string(APPEND CPACK_PACKAGE_DESCRIPTION
"\n.\nconnWatch reads these histories and says how the connection is, when it was
bad, and why.")
endif()
set(CPACK_INSTALL_CMAKE_PROJECTS
  "${CMAKE_BINARY_DIR};connTester;program;/;${CMAKE_BINARY_DIR};connTester;debian;/")
configure_file(cmake/package_time.cmake.in packaging/package_time.cmake @ONLY)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_BINARY_DIR}/packaging/package_time.cmake)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/finish_package.cmake)
set(CPACK_DEBIAN_FILE_NAME conntester.deb)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "iperf3, iputils-ping | inetutils-ping | ping")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS iperf)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/postinst
  ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/prerm
  ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
include(CPack)
