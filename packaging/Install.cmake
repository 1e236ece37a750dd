# `cmake --install build/release`: the program, its entry in the desktop's menus, its document type,
# icons, manual page and documentation.
include(GNUInstallDirs)
# Debian names the folder of the documentation as it names the package.
set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/ostrelon)

set(OSTRELON_MAINTAINER "Ostrelon Authors <authors@ostrelon.org>" CACHE STRING
    "Who publishes the package, as Name <address>")

# The moment that dates the package: SOURCE_DATE_EPOCH where it is set, so that a build can be repeated.
string(TIMESTAMP OSTRELON_PACKAGE_DAY "%Y-%m-%d" UTC)
string(TIMESTAMP OSTRELON_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(OSTRELON_PACKAGE_VERSION "${OSTRELON_VERSION_TEXT}")
# A prerelease sorts before its release in Debian when a tilde stands before it, and is distinguished in
# the software centre.
string(REPLACE "-" "~" OSTRELON_DEBIAN_VERSION "${OSTRELON_PACKAGE_VERSION}")
if(OSTRELON_PACKAGE_VERSION MATCHES "-")
  set(OSTRELON_RELEASE_TYPE development)
else()
  set(OSTRELON_RELEASE_TYPE stable)
endif()

set(linux ${CMAKE_CURRENT_SOURCE_DIR}/linux)
set(made ${CMAKE_CURRENT_BINARY_DIR}/linux)
configure_file(${linux}/org.ostrelon.Ostrelon.metainfo.xml.in ${made}/org.ostrelon.Ostrelon.metainfo.xml @ONLY)
configure_file(${linux}/changelog.Debian.in ${made}/changelog.Debian @ONLY)
configure_file(${linux}/ostrelon.1.in ${made}/ostrelon.1 @ONLY)

# Debian wants these compressed, and alike in every build.
function(compressed name source)
  add_custom_command(OUTPUT ${made}/${name}.gz
    COMMAND gzip -9nc ${source} > ${made}/${name}.gz
    DEPENDS ${source} VERBATIM)
endfunction()
compressed(ostrelon.1 ${made}/ostrelon.1)
compressed(changelog.Debian ${made}/changelog.Debian)
compressed(changelog ${CMAKE_SOURCE_DIR}/CHANGELOG.md)
add_custom_target(ostrelon_install_files ALL
  DEPENDS ${made}/ostrelon.1.gz ${made}/changelog.Debian.gz ${made}/changelog.gz)

install(TARGETS ostrelon RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${linux}/org.ostrelon.Ostrelon.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${made}/org.ostrelon.Ostrelon.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${linux}/org.ostrelon.Ostrelon.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable)
install(FILES ${linux}/org.ostrelon.Ostrelon.svg DESTINATION ${icons}/apps)
install(FILES ${linux}/application-x-ostrelon.svg DESTINATION ${icons}/mimetypes)
install(FILES ${made}/ostrelon.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${linux}/copyright ${made}/changelog.gz ${made}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${linux}/lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ostrelon)
foreach(page manual.md automation.md)
  if(EXISTS ${CMAKE_SOURCE_DIR}/docs/${page})
    install(FILES ${CMAKE_SOURCE_DIR}/docs/${page} DESTINATION ${CMAKE_INSTALL_DOCDIR})
  endif()
endforeach()
if(EXISTS ${CMAKE_SOURCE_DIR}/docs/pictures)
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/pictures DESTINATION ${CMAKE_INSTALL_DOCDIR}
          FILES_MATCHING PATTERN "*.png")
endif()
install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
