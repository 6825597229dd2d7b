# Sourced by the roads that meet a real product: Samba on this machine, a client that is connected to it through the
# mount program, and what both hold. As root each road has processes and mounts of its own, which end with it.
if [ -z "${SONOREL_ROAD_BUS:-}" ] && [ -z "${SONOREL_ROAD_SPACES:-}" ] && [ "$(id -u)" -eq 0 ]; then
  spaces=(unshare --mount --pid --fork --kill-child --mount-proc)
  if "${spaces[@]}" true 2>/dev/null; then SONOREL_ROAD_SPACES=1 exec "${spaces[@]}" "$0" "$@"; fi
fi
. "$(dirname "${BASH_SOURCE[0]}")/road.sh"

export LC_ALL=C.UTF-8 LANGUAGE=
standin=$(cd "$(dirname "${BASH_SOURCE[0]}")/../product" && pwd)/standin
skip_road() {
  ! "$(dirname "$standin")/../lacks-nothing" || fail "$1"
  printf '%s: Skipped\n%s\n' "$0" "$1"
  exit 77
}
missing=$("$standin" possible) || { [ $? -eq 77 ] || fail "${missing:-standin possible failed}"; skip_road "$missing"; }
[ "$(id -u)" -ne 0 ] || unshare --mount true 2>/dev/null || skip_road "no namespaces for this user"

point=$XDG_RUNTIME_DIR/sonorel/Volumes/VB-SHARE\$
share=$root/product/share
password='p@ss;100%:x'
stop_all() {
  cleanup
  if grep -qF "$point " /proc/self/mounts; then "$bin/sonorel-umount" -f "$point" || true; fi
  "$standin" stop "$root/product"
}
trap stop_all EXIT

# --- the client ---

is_mounted() { grep -qF " $point fuse.sonorel " /proc/self/mounts; }
mount_programs() { pgrep -f "sonorel-mount $XDG_RUNTIME_DIR" || true; }
mounted_within() { # SECONDS
  connected_within "$1"
  is_mounted || fail "connected, but the share is not mounted"
}
connect_product() {
  add_product "localhost:$("$standin" port "$root/product")"
  select_product
  waits 20 PasswordWanted '(<true>,)'
  call EnterPassword "$password" >/dev/null
  mounted_within 40
}
reconnect() {
  action connect
  waits 5 Busy '(<true>,)'
  mounted_within 40
}

# --- time ---

now() { REPLY=$((${EPOCHREALTIME/[^0-9]/} / 1000)); } # milliseconds
stopwatch=0
start_stopwatch() { now && stopwatch=$REPLY; }
within() { # MILLISECONDS WHAT
  now
  [ $((REPLY - stopwatch)) -le "$1" ] || fail "$2 took $((REPLY - stopwatch)) ms"
}
# Waits for the end of all that was dropped. The door has to answer all the while.
idle_within() { # SECONDS
  local end=$((SECONDS + $1)) pending=
  until [ "$pending" = '(<uint32 0>,)' ] && [ "$(property Transferring)" = '(<false>,)' ]; do
    [ $SECONDS -lt $end ] || fail "still at work after $1 seconds: $(property MessageLog)"
    start_stopwatch
    pending=$(property Pending)
    [ -n "$pending" ] || fail "the door does not answer"
    within 1000 "an answer of the door"
    sleep 0.1
  done
}

# --- the product ---

signal_server() { kill "-$1" -- "-$(<"$root/product/pid")"; } # at once, and to all of its processes
# The mount goes on by itself when the server is back.
share_answers_within() { # SECONDS
  local end=$((SECONDS + $1))
  until stat "$point/System" >/dev/null 2>&1; do
    [ $SECONDS -lt $end ] || fail "the share does not answer $1 seconds after the server has come back"
    sleep 0.1
  done
}
# What a list holds without what is different each time: a line for each list, "name (content)|title|title".
lists() { # FAVOURITES-FILE
  [ ! -e "$1" ] || "$bin/sonorel-favourites" "$1" |
    awk 'BEGIN { RS = ""; FS = "\n" } NR > 1 { sub(/^[0-9]+ */, ""); gsub(/\n */, "|"); print }' | sort
}
# All that it keeps, line by line; equal after equal drops.
product_state() { "$(dirname "$standin")/state" "$share" "$bin/sonorel-favourites"; }
