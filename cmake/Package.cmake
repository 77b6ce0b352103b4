# The Debian package; tools/package makes it.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qubo)
set(CPACK_PACKAGE_CONTACT "${TAVORA_MAINTAINER}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${TAVORA_WEB_PAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "music player that shows lyrics in step with the song")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${PROJECT_SOURCE_DIR}/cmake/package/description)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
	OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
# opened when something is played, so that nothing else tells of it
set(CPACK_DEBIAN_PACKAGE_DEPENDS libmpv2)
# a font for Japanese lyrics, the toolkit's own texts, the opener of help and lyrics
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
	"fonts-ipafont-gothic | fonts-noto-cjk, qt6-translations-l10n, xdg-utils")
# more kinds of background pictures; a desktop without an X server
set(CPACK_DEBIAN_PACKAGE_SUGGESTS
	"fonts-noto-color-emoji, libqt6svg6, qt6-image-formats-plugins, qt6-wayland")

configure_file(cmake/package/changelog.Debian.in ${CMAKE_BINARY_DIR}/changelog.Debian @ONLY)
set(CPACK_TAVORA_CHANGELOG ${CMAKE_BINARY_DIR}/changelog.Debian)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package/finish.cmake)
include(CPack)
