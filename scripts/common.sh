# Shared by the scripts: the project's folder and what its builds need. Source it.
# shellcheck shell=bash disable=SC2034 # the variables are for who sources this

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# libqt6opengl6-dev: UiTools needs it to configure.
build_packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-tools-dev qt6-tools-dev-tools
  qt6-l10n-tools libqt6opengl6-dev libusb-1.0-0-dev libudev-dev)
# A display without a screen, a user's hands, and a look at the result.
display_packages=(xvfb xauth xdotool x11-utils imagemagick fonts-dejavu-core)
# What the tests of the desktop use: two window systems, the accessibility bus, fonts for all languages.
desktop_packages=(xvfb xauth xdotool x11-utils wmctrl openbox x11-session-utils x11-xserver-utils sway wtype
  qt6-wayland dbus at-spi2-core gir1.2-atspi-2.0 python3-gi imagemagick optipng
  fonts-inter fonts-dejavu-core fonts-vlgothic fonts-wqy-microhei)
# What looks at a finished package.
package_packages=(lintian desktop-file-utils appstream binutils man-db qt6-gtk-platformtheme)
test_packages=(libgtest-dev libgmock-dev libbenchmark-dev libumockdev-dev umockdev shellcheck strace tzdata
  fonts-vlgothic fonts-wqy-microhei)

install_packages() {
  "$project/scripts/install-packages" "$@"
}
