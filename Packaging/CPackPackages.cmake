# The packages of `make package`: one for Debian 12 and its relatives, and an archive of the program alone.
set(CPACK_PACKAGE_NAME velisk)
set(CPACK_PACKAGE_VENDOR "The velisk developers")
set(CPACK_PACKAGE_CONTACT "${TORVANE_MAINTAINER}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${TORVANE_HOMEPAGE}")
set(CPACK_PACKAGE_VERSION "${TORVANE_VERSION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
# Whatever the umask of whoever builds.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_LIST_DIR}/CPackGenerators.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${debian_revision})
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(figures_of_package "The figures come from a relay, ${TORVANE_RELAY_HOST}, and from public nodes.")
if(relay_is_local)
    set(figures_of_package "The figures come from public nodes: the package starts a small relay for
whoever logs in, which reads them and publishes to that user's velisk alone.")
endif()
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "see in the panel what a transaction costs on Ethereum
velisk keeps a badge in the panel with the gas price of the newest block on
Ethereum or a Layer 2 network, and shows on a click what transactions cost,
the price of ETH and how the day went. It can notify you when gas is cheap.
.
${figures_of_package}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# libcurl is loaded while the program runs, which no tool can see, and trusts whom the system trusts.
# dpkg-shlibdeps does not see packed relocations, which glibc reads since 2.36.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.36), libcurl4 (>= 7.88), ca-certificates")
# A panel offers its tray on the session's bus; a session without an X server needs Qt's other plugin.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "default-dbus-session-bus | dbus-session-bus, qt6-wayland, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "notification-daemon")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${maintainer_scripts})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_FILE_NAME "velisk-${TORVANE_VERSION}-${CMAKE_SYSTEM_PROCESSOR}")
include(CPack)
