# What the program does on a real kernel, one function a scenario. Source it.
# shellcheck shell=bash disable=SC2154,SC2317,SC2034 # variables and callers are in the other files

# Each control once, by keyboard, from what the device comes with.
one_action_of_each_control() {
  mark_wire
  press alt+m Right
  { get_audio ff c8 b0 80 && set_audio ff c8 b1 80 && get_audio ff c8 b1 80; } | expect_wire "microphone"
  mark_wire
  press alt+h Prior # a page up is 16
  { get_audio ff c8 b1 80 && set_audio ff c8 b1 90 && get_audio ff c8 b1 90; } | expect_wire "headphone"
  mark_wire
  press alt+x Home
  {
    get_audio ff c8 b1 90 && set_audio 00 c8 b1 90
    get_audio 00 c8 b1 90 && set_audio 00 00 b1 90
    get_audio 00 00 b1 90
  } | expect_wire "HDMI and AUX"
  mark_wire
  press alt+r space
  sleep 1 # the list opens
  press Down Return
  {
    get_settings now 11 00
    get_settings now 11 00 && set_settings 04 now 21 00
    get_settings now 21 00
  } | expect_wire "record quality"
  mark_wire
  press alt+n
  { get_settings now 21 00 && set_settings 10 now 21 01 && get_settings now 21 01; } | expect_wire "HDCP on"
  mark_wire
  press alt+f
  { get_settings now 21 01 && set_settings 10 now 21 00 && get_settings now 21 00; } | expect_wire "HDCP off"
}

# frames WHAT: how many pictures have come so far; each must be the one after the last.
frames() {
  awk -v what="$1" '/cap dqbuf/ { match($0, /seq: *[0-9]+/); seq = substr($0, RSTART + 4, RLENGTH - 4) + 0
      if (count > 0 && seq != last + 1) lost += seq - last - 1
      last = seq; count++ }
    END { print count + 0; if (lost > 0) print "  " what ": " lost " pictures skipped by the reader" >"/dev/stderr" }' \
    "$work/frames"
}
more_frames() { [ "$(frames before)" -ge "$1" ]; }
start_stream() {
  "${as_user[@]}" v4l2-ctl -d "$(capture_node)" --stream-mmap --stream-count=0 --verbose >"$work/frames" 2>&1 &
  stream=$!
  wait_until "picture" more_frames 10
}
expect_stream() { # expect_stream WHEN: pictures still come
  local count
  kill -0 "$stream" 2>/dev/null || fail "$1: the stream has ended"
  count=$(frames "$1")
  wait_until "picture $1" more_frames $((count + 10))
  echo "  $(frames "$1") pictures $1"
}

keys_by_kernel_way_beside_a_stream() {
  plug_in_device
  start_stream
  expect_stream "before the program"
  mark_wire
  open_settings
  start_up | expect_wire "start-up"
  expect_way kernel
  one_action_of_each_control
  expect_stream "after each control"
  quit_program
  expect_stream "after the program"
  "${as_user[@]}" test ! -w "$(usb_node)" || fail "the user has rights on the USB node"
}

set_count() { [ "$(grep -c "^21 01 00 $1 " "$wire")" -ge "$2" ]; }
# change_often WHAT SELECTOR SETS PAUSE KEY KEY [FIRST]: 100 changes by two keys in turn, with a pause in ms
# after each, and the key FIRST before them.
change_often() {
  local what=$1 selector=$2 pause=$4 before keys=()
  before=$(grep -c "^21 01 00 $selector " "$wire" || true)
  for _ in $(seq 50); do keys+=("$5" "$6"); done
  xdotool key --delay "$pause" "${@:7}" "${keys[@]}"
  wait_until "hundred changes of $what" set_count "$selector" $((before + $3))
  sleep 0.5
  [ "$(grep -c "^21 01 00 $selector " "$wire")" -eq $((before + $3)) ] || fail "$what: more writes than changes"
  expect_stream "after a hundred changes of $what"
}
hundred_changes_beside_a_stream() {
  plug_in_device
  start_stream
  open_settings
  change_often "microphone" 0d 100 20 Left Right alt+m
  change_often "headphone" 0d 100 20 Left Right alt+h
  change_often "HDMI and AUX" 0d 200 20 Left Right alt+x
  change_often "record quality" 0b 100 20 Down Up alt+r
  change_often "HDCP" 0b 100 100 alt+n alt+f # a key acts on a button after a tenth of a second
  expect_not_logged "CameraControl Error"
  quit_program
  expect_stream "after the program"
  [ "$(command_device show)" = \
    "plugged: bit rate H.264 1 MJPEG 1, HDCP 0, microphone 176, headphone 128, HDMI 255, AUX 255" ] ||
    fail "the device holds $(tail -n 1 "$answers")"
}

# The centres of the sliders' knobs, "X Y" a line, from top to bottom: they are what is red in their column.
knobs() {
  import -window "$(settings_window)" "$work/window.png"
  convert "$work/window.png" -fuzz 12% -fill black +opaque '#F64D58' -fill white +opaque black \
    -define connected-components:verbose=true -connected-components 8 null: |
    awk '$5 ~ /255|white/ { split($2, box, /[x+]/); split($3, centre, ",")
      if (box[1] >= 9 && box[2] >= 9 && box[3] > 220) print int(centre[1]), int(centre[2]) }' | sort -n -k 2
}
mouse_by_kernel_way() {
  plug_in_device
  open_settings
  mark_wire
  local x y window
  window=$(settings_window)
  read -r x y < <(knobs | sed -n 2p)
  [ -n "${y:-}" ] || fail "no knob of the headphone slider"
  xdotool mousemove --window "$window" "$x" "$y" mousedown 1
  xdotool mousemove --window "$window" $((x + 40)) "$y" mousemove --window "$window" $((x + 60)) "$y" mouseup 1
  wait_until "headphone write" set_count 0d 1
  sleep 1
  local volume held
  volume=$(wire_since_mark | sed -n 's/^21 .* 92 \(..\) e4$/\1/p' | tail -n 1)
  held=$(command_device show)
  grep -q "headphone $((16#$volume))," <<<"$held" || fail "set to $volume, but the device holds $held"
  [ $((16#$volume)) -gt 140 ] || fail "the knob hardly moved: $volume"
  quit_program
}

# unload_driver, load_driver: of the kernel, for whatever is plugged in.
unload_driver() {
  echo "blacklist uvcvideo" >/run/modprobe.d/test.conf # udev must not load it again
  modprobe -r uvcvideo
}
load_driver() {
  mkdir -p /run/modprobe.d
  rm -f /run/modprobe.d/test.conf
  modprobe uvcvideo
}

with_our_rule() { install -D -m 644 "$bin/70-tavro-setup-tool.rules" /run/udev/rules.d/70-tavro-setup-tool.rules; }
without_our_rule() { rm -f /run/udev/rules.d/70-tavro-setup-tool.rules; }

keys_by_direct_way_with_our_rule() {
  unload_driver
  with_our_rule
  plug_in_device
  mark_wire
  open_settings
  start_up | expect_wire "start-up"
  expect_way direct
  one_action_of_each_control
  [ "$(grep -c '^a1 8[56]' "$wire")" -eq 0 ] || fail "the kernel asked something"
  # Nothing stays claimed: the driver can bind, and the next action goes its way without a message.
  load_driver
  wait_until "capture node" has_capture_node
  udevadm settle --timeout=20
  mark_wire
  press alt+n
  { get_settings now 21 00 && set_settings 10 now 21 01 && get_settings now 21 01; } | expect_wire "HDCP on"
  expect_way kernel
  quit_program
}

no_rights_without_our_rule() {
  unload_driver
  plug_in_device
  mark_wire
  start_program
  expect_alert_and_end
  expect_logged "CameraControl Error: Control request failed: fffffffd"
  expect_wire "without rights" </dev/null
}

no_rights_on_the_capture_node() {
  rm /run/systemd/seats/seat0 # the seat is nobody's
  plug_in_device
  start_program
  expect_alert_and_end
  expect_logged "CameraControl Error: Control request failed: fffffffd"
}

driver_on_another_interface() {
  plug_in_device --video-control-interface 1
  mark_wire
  start_program
  expect_alert_and_end
  expect_logged "CameraControl Error: Control request failed: ffffff9c"
  expect_wire "past the driver" </dev/null
  has_capture_node || fail "the driver was detached"
}

unplugged_before_the_start() {
  start_program
  expect_alert_and_end
  expect_logged "CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc."
}

unplugged_between_two_actions() {
  plug_in_device
  open_settings
  press alt+n
  wait_until "HDCP write" set_count 0b 2
  tell_device unplug
  wait_until "end of the device" is_gone
  press alt+f
  expect_alert_and_end
  expect_logged "CameraControl Error: Control request failed: 00000000"
  expect_logged "CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc."
}

unplugged_during_a_request() {
  plug_in_device
  open_settings
  tell_device fault unplug set 13
  press alt+m Right
  expect_alert_and_end
  expect_logged "getExtension_SetMicrophoneVolume..setData Fail!"
  expect_logged "CameraControl Error: IOCreatePlugInInterfaceForService returned 0xfffffffc."
}

plugged_in_again_under_another_node() {
  plug_in_device
  local old
  old=$(capture_node)
  exec 7<>"$old" # some recorder keeps the old node
  open_settings
  tell_device unplug
  wait_until "end of the device" is_gone
  tell_device plug
  wait_for_device
  [ "$(capture_node)" != "$old" ] || fail "the node has not changed"
  mark_wire
  press alt+h Left
  { get_audio ff c8 b0 80 && set_audio ff c8 b0 7f && get_audio ff c8 b0 7f; } | expect_wire "headphone"
  expect_way kernel
  quit_program
  exec 7<&-
}

# Each kind of request fails once: the program opens the device again and repeats the action, unnoticed.
fault_at_each_request() { # fault_at_each_request FAULT CODE
  mark_wire
  tell_device fault "$1" get 13
  press alt+m Left
  { failed_get 0d 07 "$2" && get_audio ff c8 b0 80 && set_audio ff c8 af 80 && get_audio ff c8 af 80; } |
    expect_wire "$1 at a GET of the volumes"
  mark_wire
  tell_device fault "$1" set 13
  press alt+m Right
  {
    get_audio ff c8 af 80 && set_audio ff c8 b0 80 " ! $2"
    get_audio ff c8 "${3:-af}" 80 && set_audio ff c8 b0 80 && get_audio ff c8 b0 80
  } | expect_wire "$1 at a SET of the volumes"
  mark_wire
  tell_device fault "$1" get 11
  press alt+n
  {
    failed_get 0b 0d "$2"
    get_settings now 11 00 && set_settings 10 now 11 01 && get_settings now 11 01
  } | expect_wire "$1 at a GET of the settings"
  mark_wire
  tell_device fault "$1" set 11
  press alt+f
  {
    get_settings now 11 01 && set_settings 10 now 11 00 " ! $2"
    get_settings now 11 "${4:-01}" && set_settings 10 now 11 00 && get_settings now 11 00
  } | expect_wire "$1 at a SET of the settings"
  expect_no_alert
}
faults_by_way() { # faults_by_way kernel|direct FAULT
  open_settings
  expect_way "$1"
  fault_at_each_request stall -9
  fault_at_each_request time-out -7
  fault_at_each_request short -1 b0 00 # a SET is acted on, but not acknowledged in full
  expect_logged "CameraControl Error: Control request failed: 00000000"
  tell_device fault stall get 13
  tell_device fault stall get 13 2
  press alt+m Left
  expect_alert_and_end
  tell_device fault "$2" get 12
  open_settings
  expect_logged "getExtension_GetFwVersion..getData Fail!"
  quit_program
}
faults_by_kernel_way() {
  plug_in_device
  faults_by_way kernel stall
}
faults_by_direct_way() {
  unload_driver
  with_our_rule
  plug_in_device
  faults_by_way direct time-out
}

attached_by_the_usbip_tool() {
  start_device --port 3241
  [ "$(awk '$4 == "0A" && $2 ~ /:0CA9$/ { print $2 }' /proc/net/tcp /proc/net/tcp6)" = 0100007F:0CA9 ] ||
    fail "listens elsewhere than on the loopback interface"
  usbip --tcp-port 3241 list -r 127.0.0.1 | grep -q '1-1: .*(1209:0001)' || fail "not in the list"
  usbip --tcp-port 3241 attach -r 127.0.0.1 -b 1-1
  wait_for_device
  "${as_user[@]}" v4l2-ctl -d "$(capture_node)" --stream-mmap --stream-count=10 >/dev/null 2>&1 || fail "no picture"
  usbip detach -p 0 2>/dev/null
  wait_until "end of the device" is_gone
}

# Others' eyes on the virtual device.
accepted_by_lsusb() {
  plug_in_device
  lsusb -v -d 1209:0001 >"$work/lsusb" 2>&1
  grep -q 'bmControls( 1) *0x1e' "$work/lsusb" || fail "no extension unit"
  ! grep -iE "warning|error|unrecognized|invalid|can't|couldn't|unknown" "$work/lsusb" || fail "lsusb complains"
  ! dmesg | grep -iE 'uvcvideo.*(invalid|unknown|error|failed)|1-1: config.*(invalid|has)' || fail "the kernel complains"
}

accepted_by_v4l2_compliance() {
  plug_in_device
  v4l2-compliance -d "$(capture_node)" >"$work/compliance" 2>&1 || true
  grep '^Total for' "$work/compliance" | sed 's/^/  /'
  [ "$(grep -c ': OK' "$work/compliance")" -ge 40 ] || fail "few tests"
  # The kernel refuses to set by hand what an automatic is in charge of (EACCES), which this tool takes for
  # a fault of the driver.
  ! grep -E '(fail|warn):' "$work/compliance" | grep -v 'returned an error (13)' || fail "v4l2-compliance complains"
}

accepted_by_qv4l2() {
  plug_in_device
  qv4l2 -d "$(capture_node)" >"$work/qv4l2" 2>&1 &
  local viewer=$!
  wait_until "window of qv4l2" xdotool search --onlyvisible --class qv4l2
  sleep 3
  kill -0 "$viewer" 2>/dev/null || fail "qv4l2 has ended: $(cat "$work/qv4l2")"
  kill "$viewer"
  ! grep -iE 'error|fail' "$work/qv4l2" || fail "qv4l2 complains"
}

scenarios=(
  unplugged_before_the_start
  keys_by_kernel_way_beside_a_stream
  hundred_changes_beside_a_stream
  mouse_by_kernel_way
  plugged_in_again_under_another_node
  unplugged_between_two_actions
  unplugged_during_a_request
  faults_by_kernel_way
  no_rights_on_the_capture_node
  driver_on_another_interface
  keys_by_direct_way_with_our_rule
  faults_by_direct_way
  no_rights_without_our_rule
  attached_by_the_usbip_tool
  accepted_by_lsusb
  accepted_by_v4l2_compliance
  accepted_by_qv4l2
)
