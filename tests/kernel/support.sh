# What the scenarios are made of: a device, a user at a display, and what is expected of the wire. Source it.
# shellcheck shell=bash disable=SC2154 # the folder of the programs is known to who sources this

work=$(mktemp -d)
chmod 755 "$work"
wire=$work/wire.txt       # every request to the device's units
log=$work/log.txt         # what the program logged
answers=$work/answers.txt # of the virtual device to commands
user=1000                 # an ordinary user in no group; the seat is theirs

fail() {
  echo "  $*" >&2
  exit 1
}

# wait_until WHAT COMMAND...: until the command succeeds, for at most a minute.
wait_until() {
  local what=$1 tries=300
  shift
  until "$@" >/dev/null 2>&1; do
    [ $((tries -= 1)) -gt 0 ] || fail "no $what"
    sleep 0.2
  done
}

# --- the device ---

capture_node() { # its name, empty if there is none
  local node
  for node in /sys/class/video4linux/video*; do
    [ "$(cat "$node/index" 2>/dev/null)" != 0 ] || echo "/dev/${node##*/}"
  done | head -n 1
}
usb_node() {
  local device
  for device in /sys/bus/usb/devices/*-*; do
    [ "$(cat "$device/idVendor" 2>/dev/null)" != 1209 ] ||
      printf '/dev/bus/usb/%03d/%03d\n' "$(cat "$device/busnum")" "$(cat "$device/devnum")"
  done | head -n 1
}
has_capture_node() { [ -n "$(capture_node)" ] && [ -c "$(capture_node)" ]; }
has_usb_node() { [ -n "$(usb_node)" ] && [ -c "$(usb_node)" ]; }
is_gone() { [ -z "$(usb_node)$(capture_node)" ]; }

wait_for_device() {
  wait_until "device" has_usb_node
  [ ! -d /sys/module/uvcvideo ] || wait_until "capture node" has_capture_node
  udevadm settle --timeout=20
}

start_device() { # start_device [OPTION...]: plugged in, and as udev leaves it
  rm -f "$work/commands"
  mkfifo "$work/commands"
  : >"$answers"
  "$bin/tavro-virtual-device" --commands "$work/commands" --wire-log "$wire" "$@" >"$answers" 2>&1 &
  device=$!
  wait_until "virtual device" grep -q '^ready' "$answers"
}
plug_in_device() { # plug_in_device [OPTION...]: plugged in, and as udev leaves it
  start_device --attach "$@"
  wait_for_device
}

command_device() { # command_device WORD...: the answer is printed
  local before
  before=$(wc -l <"$answers")
  echo "$*" >"$work/commands"
  wait_until "answer to $*" answered $((before + 1))
  tail -n 1 "$answers"
}
tell_device() { # tell_device WORD...: a command that has no answer but "ok"
  [ "$(command_device "$@")" = ok ] || fail "$*: $(tail -n 1 "$answers")"
}
answered() { [ "$(wc -l <"$answers")" -ge "$1" ]; }

# --- the user ---

# What is run by it is the process that bash knows, not a child of that.
as_user=(setpriv "--reuid=$user" "--regid=$user" --clear-groups
  env "HOME=$work/home" "XDG_RUNTIME_DIR=$work/home" TZ=UTC LC_ALL=C.UTF-8 QT_QPA_PLATFORM=xcb)
install -d -m 700 -o "$user" -g "$user" "$work/home"

windows() { xdotool search --onlyvisible --name '^Tavro Setup Tool$' 2>/dev/null || true; }
# The settings window is the higher one of the two that bear the program's name.
window_of_height() { # window_of_height LEAST MOST: the first such window
  local id height
  for id in $(windows); do
    height=$(xdotool getwindowgeometry --shell "$id" 2>/dev/null | sed -n 's/^HEIGHT=//p')
    if [ -n "$height" ] && [ "$height" -ge "$1" ] && [ "$height" -le "$2" ]; then
      echo "$id"
      return
    fi
  done
  return 1
}
settings_window() { window_of_height 450 2000; }
alert_window() { window_of_height 1 449; }

start_program() {
  "${as_user[@]}" "$bin/tavro-setup-tool" >"$log" 2>&1 &
  program=$!
}
open_settings() { # starts the program and waits until it can be used
  start_program
  wait_until "settings window" settings_window
  xdotool windowfocus --sync "$(settings_window)" # no window manager does it here
}
press() { xdotool key --delay 20 "$@"; }

expect_no_alert() {
  kill -0 "$program" 2>/dev/null || fail "the program has ended"
  ! alert_window >/dev/null || fail "an alert"
}
expect_end() { # the program must end with status 0
  local status=0
  wait "$program" || status=$?
  [ "$status" -eq 0 ] || fail "the program ended with status $status"
}
expect_alert_and_end() {
  wait_until "alert" alert_window
  xdotool windowfocus --sync "$(alert_window)"
  press Return
  expect_end
}
quit_program() {
  expect_no_alert
  press ctrl+q
  expect_end
}
expect_logged() { grep -qF -- "$1" "$log" || fail "not logged: $1"; }
expect_not_logged() { ! grep -qF -- "$1" "$log" || fail "logged: $1"; }
expect_way() { # expect_way kernel|direct: by what the program has open
  local open
  open=$(readlink "/proc/$program/fd/"* || true)
  case $1 in
    kernel) grep -qx "$(capture_node)" <<<"$open" && ! grep -q /dev/bus/usb/ <<<"$open" ;;
    direct) grep -qx "$(usb_node)" <<<"$open" && ! grep -q /dev/video <<<"$open" ;;
  esac || fail "not the $1 way: $(tr '\n' ' ' <<<"$open")"
}

# --- the wire ---

mark_wire() {
  wire_mark=$(wc -l <"$wire")
  time_mark=$(date +%s)
}

# What has crossed the wire since the mark, without what the kernel asks for itself (GET_LEN, GET_INFO, why a
# request was refused). The clock in a settings block is replaced by "now", "reset" (2000-01-01, when it was
# plugged in) or "wrong".
wire_since_mark() {
  tail -n +$((wire_mark + 1)) "$wire" | TZ=UTC awk -v from="$time_mark" -v to="$(date +%s)" '
    function number(hex) {
      return index("0123456789abcdef", substr(hex, 1, 1)) * 16 + index("0123456789abcdef", substr(hex, 2, 1)) - 17
    }
    function clock(time) {
      time = mktime(2000 + number($12) " " number($13) " " number($14) " " number($15) " " number($16) " " \
        number($17))
      return time >= from - 3 && time <= to + 3 ? "now" : time >= 946684800 && time < 946684800 + 600 ? "reset" : "wrong"
    }
    $2 == "85" || $2 == "86" || /^a1 81 00 02 00 00 / { next }
    $4 == "0b" && NF >= 22 { $12 = clock(); for (i = 13; i <= 17; i++) $i = ""; $0 = $0; $1 = $1 }
    { print }'
}

expect_wire() { # expect_wire WHAT: exactly the lines on standard input have crossed since the mark
  cat >"$work/expected"
  local lines
  lines=$(wc -l <"$work/expected")
  for _ in $(seq 300); do
    wire_since_mark >"$work/crossed"
    [ "$(wc -l <"$work/crossed")" -lt "$lines" ] || break
    sleep 0.2
  done
  sleep 0.3 # what must not come would come now
  wire_since_mark >"$work/crossed"
  diff -U 20 "$work/expected" "$work/crossed" >&2 || fail "$1: other requests than expected"
}

# Lines of the wire. Numbers are in hex, as on the wire; FAILURE is empty or " ! CODE".
get_settings() { echo "a1 81 00 0b 00 03 0d 00 | 00 5a $1 $2 $3 a7 3b c9"; } # CLOCK LEVELS HDCP
set_settings() { echo "21 01 00 0b 00 03 0d 00 | $1 5a $2 $3 $4 a7 3b c9${5:-}"; } # COMMAND CLOCK LEVELS HDCP FAILURE
get_audio() { echo "a1 81 00 0d 00 03 07 00 | 6d $1 $2 $3 92 $4 e4"; } # HDMI AUX MICROPHONE HEADPHONE
set_audio() { echo "21 01 00 0d 00 03 07 00 | 6d $1 $2 $3 92 $4 e4${5:-}"; }
get_versions() {
  echo "a1 81 00 0c 00 03 1a 00 |" \
    "11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 05 06 07 08 09 0a 0b 0c 01 02 03 04"
}
failed_get() { # failed_get SELECTOR LENGTH CODE
  echo "a1 81 00 $1 00 03 $2 00 | ! $3"
}
start_up() { # of a device that is as it comes
  get_settings reset 11 00
  set_settings 02 now 11 00
  get_settings now 11 00
  get_settings now 11 00 # bit rate
  for _ in microphone headphone hdmi; do get_audio ff c8 b0 80; done
  get_versions
  get_settings now 11 00 # HDCP
}
