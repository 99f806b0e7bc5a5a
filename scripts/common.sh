# Shared by the scripts: the project's folder and what its builds need. Source it.
# shellcheck shell=bash disable=SC2034 # the variables are for who sources this

# Each script begins with what it does, needs and leaves: that is what --help prints.
show_help() { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; }
case ${1:-} in
  -h | --help) show_help; exit ;;
esac

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# libqt6opengl6-dev: UiTools needs it to configure.
build_packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-tools-dev qt6-tools-dev-tools
  qt6-l10n-tools libqt6opengl6-dev libusb-1.0-0-dev libudev-dev)
# A display without a screen, a user's hands, and a look at the result. python3 is for what drives windows.
display_packages=(python3 xvfb xauth xdotool x11-utils imagemagick fonts-dejavu-core)
# What the tests of the desktop use: two window systems, the accessibility bus, fonts for all languages.
desktop_packages=(xvfb xauth xdotool x11-utils wmctrl openbox x11-session-utils x11-xserver-utils sway
  qt6-wayland dbus at-spi2-core gir1.2-atspi-2.0 python3-gi imagemagick optipng
  fonts-inter fonts-dejavu-core fonts-vlgothic fonts-wqy-microhei)
# What looks at a finished package.
package_packages=(lintian desktop-file-utils appstream binutils man-db qt6-gtk-platformtheme)
test_packages=(libgtest-dev libgmock-dev libbenchmark-dev libumockdev-dev umockdev shellcheck strace tzdata
  fonts-vlgothic fonts-wqy-microhei)

# What people get is built in one way, whatever is tested on it: nothing is compiled twice.
configure_release() { # configure_release [OPTION...]
  cmake -S "$project" --preset release -DTAVRO_WARNINGS_ARE_ERRORS=ON "$@" >/dev/null
}

# The device's "VENDOR PRODUCT", four hex digits each, which a build was given, by the udev rule that it made.
identifiers() { # identifiers RULE
  sed -n 's/.*idVendor}=="\(....\)".*idProduct}=="\(....\)".*/\1 \2/p' "$1"
}

install_packages() {
  "$project/scripts/install-packages" "$@"
}
