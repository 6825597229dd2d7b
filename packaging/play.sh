# Sourced by the demonstrations behind ./run, on a session bus and in folders of their own, which ./run names in
# SONOREL_RUN_ROOT, SONOREL_RUN_PRODUCT and SONOREL_RUN_BIN: how they speak to people and to the client.
set -euo pipefail
export LC_ALL=C.UTF-8

root=$SONOREL_RUN_ROOT product=$SONOREL_RUN_PRODUCT bin=$SONOREL_RUN_BIN
tracks="$root/music/The Sample Band/Four Formats"
playlist="Four Formats"
client_log=$root/client.log
door=(--session --dest com.orv.Sonorel --object-path /com/orv/Sonorel)
client= # its process, while it runs

heading() { printf '\n%s\n%s\n' "$1" "$(printf '%*s' ${#1} '' | tr ' ' '-')"; }
sizes() { (cd "$1" && stat -c '%s %n' -- *) | while read -r size name; do printf '  %9s bytes  %s\n' "$size" "$name"; done; }
fail() {
  printf '\nIt did not work: %s\n' "$1" >&2
  if [ -s "$client_log" ]; then
    printf 'The last lines of the client (%s):\n' "$client_log" >&2
    tail -n 15 "$client_log" >&2
  fi
  exit 1
}

property() { gdbus call "${door[@]}" --method org.freedesktop.DBus.Properties.Get com.orv.Sonorel.Client "$1" 2>/dev/null; }
call() { gdbus call "${door[@]}" --method "com.orv.Sonorel.Client.$1" "${@:2}" >/dev/null; }
waits() { # SECONDS PROPERTY PATTERN
  local end=$((SECONDS + $1))
  until [[ $(property "$2") == $3 ]]; do
    kill -0 "$client" 2>/dev/null || fail "the client ended by itself."
    [ $SECONDS -lt $end ] || return 1
    sleep 0.2
  done
}
rows() { property "$1" | grep -o "'[^']*'" | tr -d "'"; } # PROPERTY: one line for each
message_log() { printf '%b\n' "$(property MessageLog | sed -e "s/^(<[\"']//" -e "s/[\"']>,)\$//")"; }
start_client() {
  "$bin/sonoreld" 2>"$client_log" &
  client=$!
  waits 20 Busy '(<false>,)' || fail "the client did not start."
}
end_client() {
  gdbus call "${door[@]}" --method org.freedesktop.Application.ActivateAction quit '[]' '{}' >/dev/null
  local status=0
  wait "$client" || status=$?
  client=
  [ "$status" -eq 0 ] || fail "the client ended with status $status."
}

# make FILE FFMPEG-ARGUMENTS...: unless it stands there already, made by these very scripts.
make() {
  [ "$1" -nt "$0" ] && [ "$1" -nt "${BASH_SOURCE[0]}" ] && return
  [ -n "${making:-}" ] || echo "Making samples ..."
  making=yes
  mkdir -p "$(dirname "$1")"
  ffmpeg -v error -y "${@:2}" "$1"
}
make_track() { # NUMBER TITLE EXTENSION SECONDS FFMPEG-ARGUMENTS...
  make "$tracks/$1 $2.$3" -f lavfi -i "sine=frequency=$((220 * 10#$1)):sample_rate=44100:duration=$4" "${@:5}" -ac 2 \
    -metadata artist="The Sample Band" -metadata album="Four Formats" -metadata title="$2" -metadata track="$((10#$1))"
}
