# Shared by the scripts: the project's folder and what its builds need. Source it.
# shellcheck shell=bash disable=SC2034 # the variables are for who sources this

# Each script begins with what it does, needs and leaves: that is what --help prints.
show_help() { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; }
case ${1:-} in
  -h | --help) show_help; exit ;;
esac

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# build_depends build|test: what debian/control needs to build, or to run the tests of the build as well.
build_depends() {
  sed -n '/^Build-Depends:/,/^Standards-Version:/p' "$project/debian/control" |
    awk -v want="$1" '/^[A-Z].*: *$|^Standards/ { next } { sub(/^Build-Depends:/, ""); sub(/,$/, "", $1) }
      $1 !~ /^debhelper/ && (/nocheck/ ? "test" : "build") == want { print $1 }'
}
mapfile -t build_packages < <(build_depends build)
build_packages+=(g++)
mapfile -t test_packages < <(build_depends test)
test_packages+=(shellcheck strace)
# A virtual display, simulated input, and a look at the result. python3 is for what drives windows.
display_packages=(python3 xvfb xauth xdotool x11-utils imagemagick fonts-dejavu-core)
# What the tests of the desktop use: two window systems, the accessibility bus, fonts for all languages.
desktop_packages=(xvfb xauth xdotool x11-utils wmctrl openbox x11-session-utils x11-xserver-utils sway
  qt6-wayland dbus at-spi2-core gir1.2-atspi-2.0 python3-gi imagemagick optipng
  fonts-inter fonts-dejavu-core fonts-vlgothic fonts-wqy-microhei)
# What boots a kernel and looks at devices there. setpriv and mawk are always there.
kernel_packages=(qemu-system-x86 busybox-static kmod cpio xz-utils zstd udev systemd
  v4l-utils qv4l2 usbutils usbip strace locales dbus at-spi2-core gir1.2-atspi-2.0 python3-gi)
sanitizer_packages=(clang libclang-rt-dev)
analysis_packages=(libbenchmark-dev clang clang-tidy cppcheck valgrind)
# What makes a package and looks at it.
package_packages=(git build-essential debhelper dpkg-dev xz-utils lintian desktop-file-utils appstream binutils man-db
  qt6-gtk-platformtheme)

# build PRESET [TARGET...]: configures and builds in build/PRESET, for the device that TAVRO_USB_ID names as lsusb
# prints it, whatever the folder was built for before.
build() {
  local preset=$1 id=${TAVRO_USB_ID:-1209:0001}
  shift
  cmake -S "$project" --preset "$preset" -DTAVRO_USB_VENDOR_ID="0x${id%:*}" -DTAVRO_USB_PRODUCT_ID="0x${id#*:}" >/dev/null
  cmake --build "$project/build/$preset" ${1:+--target "$@"}
}

# What a run was made on, for docs/tested.md.
describe_system() {
  echo "$(. /etc/os-release && echo "$PRETTY_NAME"), Qt $("${PKG_CONFIG:-pkg-config}" --modversion Qt6Core 2>/dev/null || echo '?')," \
    "g++ $(c++ -dumpfullversion), $(uname -m)"
}

# The device's "VENDOR PRODUCT", four hex digits each, which a build was given, by the udev rule that it made.
identifiers() { # identifiers RULE
  sed -n 's/.*idVendor}=="\(....\)".*idProduct}=="\(....\)".*/\1 \2/p' "$1"
}

# How this machine reaches its mirror of Debian, for a system that is made here.
apt_settings() {
  apt-config dump | grep -iE '^Acquire::(http|https|ftp|retries|check-valid-until)' || true
  [ -z "${http_proxy:-}" ] || echo "Acquire::http::Proxy \"$http_proxy\";"
  [ -z "${https_proxy:-}" ] || echo "Acquire::https::Proxy \"$https_proxy\";"
}

install_packages() {
  "$project/scripts/install-packages" "$@"
}
