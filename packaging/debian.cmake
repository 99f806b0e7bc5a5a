# `cpack` in the build folder makes two packages for Debian: the tool, and the demo beside it.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_NAME tavro-setup-tool)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Tavro Setup Tool developers <developers@tavro.example>")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL tool demo)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${PROJECT_HOMEPAGE_URL})

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME tavro-setup-tool)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION video)
# What Qt loads at run time: Wayland, and its own texts in the user's language.
set(CPACK_DEBIAN_TOOL_PACKAGE_RECOMMENDS "qt6-wayland, qt6-translations-l10n, udev")
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS tavro-setup-tool-demo)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "Shows and changes the settings stored in a USB video capture device: the
bit-rate level of its H.264 recording, microphone, headphone, HDMI and AUX
volume, and HDCP. It sets the clock of the device and shows its firmware
versions. Recording continues.")

set(CPACK_DEBIAN_DEMO_PACKAGE_NAME tavro-setup-tool-demo)
set(CPACK_DEBIAN_DEMO_PACKAGE_SECTION video)
set(CPACK_DEBIAN_DEMO_PACKAGE_RECOMMENDS "qt6-wayland, qt6-translations-l10n")
set(CPACK_DEBIAN_DEMO_DESCRIPTION "The window of the setup tool on a capture device that is simulated, for
trying it out, for translators and for tests of the desktop. Each request to
the device is printed.")

include(CPack)
