# The Debian packages belun-download and belun-simulator. The command cpack -G DEB, run in a build folder,
# writes them to its subfolder packages/.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_HOMEPAGE_URL "${BELUN_PROJECT_URL}")
set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_BINARY_DIR}/SourceDate.cmake")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program simulator)
set(CPACK_DEB_COMPONENT_INSTALL ON)
# Folders get these permissions, whatever the caller's umask is.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${BELUN_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# Empty, because CPack would put this text before the summary of each package.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME belun-download)
set(CPACK_DEBIAN_PROGRAM_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION net)
# Recommended: a font for the Chinese texts, Qt's plugin for Wayland, and a terminal for the desktop action.
set(wayland qtwayland5)
if(BELUN_QT_MAJOR EQUAL 6)
  set(wayland qt6-wayland)
endif()
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS
  "fonts-wqy-microhei | fonts-noto-cjk, ${wayland}, xterm | x-terminal-emulator")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS belun-simulator)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
  "fetch recordings from the camera of a BELUN vehicle
The desktop companion of the BELUN underwater vehicle. One window, on a
computer on the vehicle's own network, links to the vehicle, shows its
versions, lists the recordings on the card of its camera, downloads and
deletes them, and formats the card. In English and Chinese.
.
The command belun-verify compares the card with the downloaded recordings and
says whether the recordings may be deleted from the card.")

set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME belun-simulator)
set(CPACK_DEBIAN_SIMULATOR_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION net)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SOURCE belun-download)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_DEPENDS iproute2)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SUGGESTS belun-download)
set(CPACK_DEBIAN_SIMULATOR_DESCRIPTION
  "play a BELUN underwater vehicle in a private network
Plays the two modules and the camera of a BELUN vehicle, healthy or with
faults, so that belun-download can be tried out and tested without one. It
runs in a private network on this computer; no real network is touched.")

configure_file("${PROJECT_SOURCE_DIR}/cmake/SourceDate.cmake.in"
  "${PROJECT_BINARY_DIR}/SourceDate.cmake" @ONLY)
include(CPack)
