# Shared by the scripts, which source it: the project's folder, its packages, building.
# shellcheck shell=bash disable=SC2034 # the variables are for the scripts that source this

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

# Each script begins with a comment on its purpose, its needs and the files that it leaves. --help prints it.
show_help() { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; }

# takes PATTERN ARGUMENT...: prints the help if the first argument asks for it. It is an error if the arguments, joined
# by blanks, do not match the pattern.
takes() {
  local pattern=$1
  shift
  case ${1:-} in
    -h | --help) show_help; exit ;;
  esac
  # shellcheck disable=SC2053 # a pattern
  [[ $* == $pattern ]] || { show_help >&2; exit 2; }
}

# debian/control names one package a line. The compiler is not among them: Debian's build tools include it.
mapfile -t build_packages < <(sed -n '/<!nocheck>/d; s/^ \{15\}\([^ ,]*\).*/\1/p' "$project/debian/control")
mapfile -t test_packages < <(sed -n 's/^ \{15\}\([^ ,]*\) <!nocheck>.*/\1/p' "$project/debian/control")
build_packages+=(g++)
test_packages+=(shellcheck)
# A virtual display, simulated input, screenshots.
display_packages=(python3 xvfb xauth xdotool x11-utils imagemagick fonts-dejavu-core)
# Two window systems, a screen reader, fonts for all languages.
desktop_packages=(xvfb xauth xdotool x11-utils wmctrl openbox x11-session-utils x11-xserver-utils sway
  qt6-wayland dbus at-spi2-core gir1.2-wnck-3.0 orca imagemagick optipng
  fonts-inter fonts-dejavu-core fonts-vlgothic fonts-wqy-microhei)
# A virtual machine, and tools for devices in it. setpriv and mawk are always there.
kernel_packages=(qemu-system-x86 busybox-static kmod cpio xz-utils zstd udev systemd
  v4l-utils usbutils usbip strace locales debian-archive-keyring)
sanitizer_packages=(clang libclang-rt-dev)
style_packages=(clang-format git shellcheck)
analysis_packages=(libbenchmark-dev clang clang-tidy cppcheck valgrind)
# Making packages, and checking them.
package_packages=(git build-essential debhelper dpkg-dev xz-utils)
check_packages=(lintian desktop-file-utils appstream man-db qt6-gtk-platformtheme)

install_packages() {
  "$project/scripts/install-packages" "$@"
}

# may_install PACKAGE...: asks at a terminal, unless TAVRO_YES=1. Ends the script if nothing may be installed.
may_install() {
  local refusal='' answer=''
  if [ "${TAVRO_NO_INSTALL:-}" = 1 ]; then
    refusal="TAVRO_NO_INSTALL=1 forbids installing them"
  elif ! command -v "${as_root[@]:-true}" >/dev/null; then
    refusal="installing them needs root or sudo"
  elif [ -t 0 ] && [ "${TAVRO_YES:-}" != 1 ]; then
    read -r -p "Install $*? [Y/n] " answer
    [[ $answer =~ ^([Yy].*)?$ ]] || refusal="not installed, as you chose"
  fi
  [ -z "$refusal" ] || { echo "missing packages: $*; $refusal" >&2; exit 1; }
}

# For scripts that install our own packages on this system and purge them afterwards.
may_install_own_packages() {
  if dpkg-query -W -f '${db:Status-Status}\n' 'tavro-setup-tool*' 2>/dev/null | grep -qx installed; then
    echo "tavro-setup-tool or tavro-setup-tool-demo is installed here; remove it first" >&2
    exit 1
  fi
  may_install tavro-setup-tool tavro-setup-tool-demo
}

# build PRESET [TARGET...]: configures and builds in build/PRESET, for the device TAVRO_USB_ID (as lsusb prints it)
# or the default one. The device of an earlier build is forgotten.
build() {
  local preset=$1 id=${TAVRO_USB_ID:-}
  shift
  cmake -S "$project" --preset "$preset" -U 'TAVRO_USB_*' \
    ${id:+-DTAVRO_USB_VENDOR_ID="0x${id%:*}" -DTAVRO_USB_PRODUCT_ID="0x${id#*:}"} >/dev/null
  cmake --build "$project/build/$preset" ${1:+--target "$@"}
}

# Fails if clang-format would change a C++ file or shellcheck has a finding, in any file that git tracks or would track.
# Each version of clang-format formats a bit differently; ours is Debian 12's.
check_style() {
  local files=(git -C "$project" ls-files -z --cached --others --exclude-standard)
  (
    cd "$project" || exit
    if clang-format --version | grep -q ' version 14\.'; then
      "${files[@]}" '*.cpp' '*.h' | xargs -0 clang-format --dry-run --Werror || exit
      echo "clang-format: no findings"
    else
      echo "clang-format: not run, this is not version 14"
    fi
    "${files[@]}" | xargs -0 grep -lZE -m 1 '^#!.*\bbash$|^# shellcheck shell=bash' | xargs -0 shellcheck -x ||
      exit
    echo "shellcheck: no findings"
  )
}

# The system that tests run on.
describe_system() {
  echo "$(. /etc/os-release && echo "$PRETTY_NAME")," \
    "Qt $("${PKG_CONFIG:-pkg-config}" --modversion Qt6Core 2>/dev/null || echo '?')," \
    "g++ $(c++ -dumpfullversion), $(uname -m)"
}

# identifiers RULE: the "VENDOR PRODUCT", four hex digits each, that the udev rule of a build names.
identifiers() {
  sed -n 's/.*idVendor}=="\(....\)".*idProduct}=="\(....\)".*/\1 \2/p' "$1"
}

# apt's settings for reaching the mirror, for a new system.
apt_settings() {
  apt-config dump | grep -iE '^Acquire::(http|https|ftp|retries|check-valid-until)' || true
  [ -z "${http_proxy:-}" ] || echo "Acquire::http::Proxy \"$http_proxy\";"
  [ -z "${https_proxy:-}" ] || echo "Acquire::https::Proxy \"$https_proxy\";"
}
