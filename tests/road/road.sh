# Sourced by the road tests: a client with folders and a bus of its own, driven over its door. Each test starts itself
# again below dbus-run-session. Needs SONOREL_BIN, the folder of the programs.
set -euo pipefail

if [ -z "${SONOREL_ROAD_BUS:-}" ]; then
  root=$(mktemp -d "${TMPDIR:-/tmp}/sonorel-road-XXXXXX")
  status=0
  SONOREL_ROAD_BUS=1 SONOREL_ROAD_ROOT=$root dbus-run-session -- "$0" "$@" || status=$?
  rm -rf --one-file-system "$root"
  exit $status
fi

root=$SONOREL_ROAD_ROOT bin=$SONOREL_BIN
# No road meets the machine's own network: only those that make one find products.
export DBUS_SYSTEM_BUS_ADDRESS=${SONOREL_ROAD_SYSTEM_BUS:-unix:path=$root/no-system-bus}
export XDG_DATA_HOME=$root/data XDG_CONFIG_HOME=$root/config XDG_RUNTIME_DIR=$root/runtime
mkdir -p "$XDG_DATA_HOME" "$XDG_CONFIG_HOME" "$root/music"
install -d -m 700 "$XDG_RUNTIME_DIR"
share=$XDG_DATA_HOME/sonorel/Embedded/VB-SHARE\$
client=
door=(--session --dest com.orv.Sonorel --object-path /com/orv/Sonorel)

fail() {
  echo "FAILED: $*" >&2
  echo "--- the client's log" >&2
  tail -n 40 "$root/client.log" >&2 2>/dev/null || true
  exit 1
}
cleanup() {
  if [ -n "$client" ] && kill -0 "$client" 2>/dev/null; then
    kill -KILL "$client" 2>/dev/null || true
    wait "$client" 2>/dev/null || true
  fi
}
trap cleanup EXIT

property() { gdbus call "${door[@]}" --method org.freedesktop.DBus.Properties.Get com.orv.Sonorel.Client "$1" 2>/dev/null || true; }
action() { gdbus call "${door[@]}" --method org.freedesktop.Application.ActivateAction "$1" '[]' '{}' >/dev/null; }
reopen() { gdbus call "${door[@]}" --method org.freedesktop.Application.Activate '{}' >/dev/null; }
emit() { gdbus emit --session --object-path /com/orv/TrackChute --signal "com.orv.TrackChute.$1" "${@:2}"; } # SIGNAL ARGUMENT...
call() { gdbus call "${door[@]}" --method "com.orv.Sonorel.Client.$1" "${@:2}"; }
waits() { # SECONDS PROPERTY PATTERN
  local end=$((SECONDS + $1))
  until [[ $(property "$2") == $3 ]]; do
    kill -0 "$client" 2>/dev/null || fail "the client ended while $2 was waited for"
    [ $SECONDS -lt $end ] || fail "$2 is $(property "$2") and not $3"
    sleep 0.1
  done
}
client_command=("$bin/sonoreld") # a road may have a client of its own
start_client() { # OPTION...
  "${client_command[@]}" "$@" >>"$root/client.log" 2>&1 &
  client=$!
  waits 30 Busy '(<false>,)'
}
await_end() {
  local status=0
  wait "$client" || status=$?
  client=
  [ "$status" -eq 0 ] || fail "the client ended with status $status"
}
end_client() {
  action quit
  await_end
}
kill_client() {
  kill -KILL "$client"
  wait "$client" 2>/dev/null || true
  client=
}
install_client() { # an installation of its own, so that stand-ins for other programs can stand beside the client
  mkdir -p "$root/installed/bin" "$root/installed/share/sonorel"
  cp "$bin/sonoreld" "$root/installed/bin/"
  ln -s "$(realpath "$bin/../resources")" "$root/installed/share/sonorel/resources"
  bin=$root/installed/bin
  client_command=("$bin/sonoreld")
}
stand_in() { # NAME: a program of the installation, its text on the standard input
  cat >"$root/installed/bin/$1"
  chmod +x "$root/installed/bin/$1"
}
make_product() { # NAME: the embedded product names itself so
  mkdir -p "$share/System"
  printf '%s\n5.03.00.2387\n' "$1" >"$share/System/OrvProductName.orv"
}
add_product() { # HOST
  call AddManualProduct "" "$1" >/dev/null
  waits 10 AddedProducts "*$1*"
  call AddAddedProduct 0 "$1" >/dev/null
  waits 10 SelectedProducts "*$1*"
}
select_product() { # the first of them
  local text
  text=$(property SelectedProducts | grep -o "'[^']*'" | head -n1 | tr -d "'")
  call SelectProduct 0 "$text" >/dev/null
}
connected_within() { # SECONDS
  waits "$1" Connected '(<true>,)'
  waits "$1" Busy '(<false>,)'
}
connect_embedded() {
  add_product embedded
  select_product
  waits 20 PasswordWanted '(<true>,)'
  call EnterPassword secret >/dev/null
  connected_within 40
}
make_song() { # FILE TITLE ARTIST ALBUM
  mkdir -p "$(dirname "$1")"
  ffmpeg -v error -y -f lavfi -i "sine=frequency=440:duration=${5:-6}" -ac 2 \
    -metadata title="$2" -metadata artist="$3" -metadata album="$4" -b:a 256k "$1"
}
make_picture() { # FILE [SIZE]
  mkdir -p "$(dirname "$1")"
  ffmpeg -v error -y -f lavfi -i "testsrc=size=${2:-64x48}:rate=1:duration=1" -frames:v 1 "$1"
}
# Large and without tags: each keeps its own name, and all are copied.
make_plain_songs() { # COUNT
  local i
  head -c 200000 /dev/zero >"$root/music/0001.mp3"
  for i in $(seq 2 "$1"); do ln "$root/music/0001.mp3" "$root/music/$(printf %04d "$i").mp3"; done
}
idle() { waits "${1:-60}" Pending '(<uint32 0>,)'; waits 10 Transferring '(<false>,)'; }
music_tree() { (cd "$share/Music" && find . -type f ! -name '.sonorel-*' -printf '%P %s\n' | sort); }
temporary_files() { find "$share" -name '.sonorel-*'; }
nothing_temporary_is_left() { [ -z "$(temporary_files)" ] || fail "${1:+$1: }left behind: $(temporary_files)"; } # [WHEN]
favourites() { "$bin/sonorel-favourites" --json "$share/System/NetMusicFavorites.orv"; }
