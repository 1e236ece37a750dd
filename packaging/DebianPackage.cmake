# `cpack --config build/release/CPackConfig.cmake`: ostrelon_VERSION-1_ARCHITECTURE.deb.
file(STRINGS ${CMAKE_CURRENT_SOURCE_DIR}/debian-packages.txt lines REGEX "^run:")
set(runtime "")
foreach(line ${lines})
  string(REGEX REPLACE "^run: *" "" line "${line}")
  string(REGEX REPLACE " +" ";" names "${line}")
  list(APPEND runtime ${names})
endforeach()
list(JOIN runtime ", " runtime)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ostrelon)
set(CPACK_PACKAGE_VERSION ${OSTRELON_DEBIAN_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "drawing board for building plans in two dimensions")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# The libraries that the program names are found in it; what it loads at run time stands in the list.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${runtime}")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${OSTRELON_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://ostrelon.org")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Ostrelon draws building plans on one canvas measured in feet and inches,
with the pointer or by typed commands. Walls belong to named systems with a
thickness, a height and notes; snapping and tracking help the pointer.
Drawings are exported as PNG, SVG and PDF at true scale, and exchanged with
other programs as DXF. The whole program can be driven by scripts without a
window.")
include(CPack)
