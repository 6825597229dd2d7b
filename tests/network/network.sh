# Sourced by the network tests: two namespaces with two cables between them, in one of them a product's service daemon.
# Nothing of it can be seen outside, and everything ends with the script. Where namespaces or the daemon cannot be had
# the test is skipped (status 77), but never where they must work.
set -euo pipefail
export PATH=$PATH:/usr/sbin:/sbin # the service daemon is not on everybody's

if [ -z "${SONOREL_NETWORK:-}" ]; then
  skip_network() { # WHY
    if "$(dirname "${BASH_SOURCE[0]}")/../lacks-nothing"; then
      echo "FAILED: what a network test needs must be here: $1" >&2
      exit 1
    fi
    printf '%s: Skipped\n%s\n' "$0" "$1"
    exit 77
  }
  [ "$(id -u)" -eq 0 ] || skip_network "only root: a user's own namespaces lack the accounts that the service daemon takes"
  for tool in avahi-daemon avahi-publish ip gdbus; do
    command -v "$tool" >/dev/null || skip_network "$tool is not installed"
  done
  spaces=(unshare --net --mount --pid --fork --kill-child --mount-proc)
  reason=$("${spaces[@]}" ip link set lo up 2>&1) || skip_network "no network namespaces: $reason"
  network=$(mktemp -d "${TMPDIR:-/tmp}/sonorel-network-XXXXXX")
  status=0
  SONOREL_NETWORK=$network "${spaces[@]}" "$0" "$@" || status=$?
  rm -rf "$network"
  exit $status
fi

network=$SONOREL_NETWORK
fail() {
  echo "FAILED: $*" >&2
  tail -n 20 "$network"/*.log >&2 2>/dev/null || true
  exit 1
}
until_true() { # SECONDS WHAT COMMAND...
  local end=$((SECONDS + $1))
  until "${@:3}"; do
    [ $SECONDS -lt $end ] || fail "$2 did not come"
    sleep 0.05
  done
}
start_bus() { # NAME
  cat >"$network/$1.conf" <<END
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=$network/$1</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>
END
  dbus-daemon --nofork --nopidfile --config-file="$network/$1.conf" >"$network/$1.log" 2>&1 &
  until_true 10 "the bus $1" test -S "$network/$1"
}
configure_avahi() { # NAME: the daemon of that side
  cat >"$network/$1.avahi" <<END
[server]
host-name=$1-host
use-ipv4=yes
use-ipv6=no
allow-interfaces=${1}0,${1}1
enable-dbus=yes
objects-per-client-max=4096
[wide-area]
enable-wide-area=no
[publish]
publish-hinfo=no
publish-workstation=no
END
}
in_product() { nsenter --target "$product" --net --mount "$@"; }
has_space() { [ "$(readlink "/proc/$product/ns/net")" != "$(readlink /proc/self/ns/net)" ]; }
avahi() { # NAME: runs that side's daemon
  DBUS_SYSTEM_BUS_ADDRESS=unix:path=$network/$1.bus exec avahi-daemon -f "$network/$1.avahi" \
    --no-drop-root --no-chroot --no-rlimits
}
owns_avahi() { # BUS
  gdbus call --address "unix:path=$network/$1" --dest org.freedesktop.DBus --object-path / \
    --method org.freedesktop.DBus.GetNameOwner org.freedesktop.Avahi >/dev/null 2>&1
}

mount -t tmpfs tmpfs /run
mkdir /run/avahi-daemon
ip link set lo up
unshare --net --mount sleep infinity &
product=$!
until_true 10 "the product's namespace" has_space
in_product mount -t tmpfs tmpfs /run
in_product mkdir /run/avahi-daemon
in_product ip link set lo up
for cable in 0 1; do
  ip link add "client$cable" type veth peer name "product$cable" netns "$product"
  ip address add "10.$((77 + cable)).0.1/24" dev "client$cable"
  in_product ip address add "10.$((77 + cable)).0.2/24" dev "product$cable"
  in_product ip link set "product$cable" up
done
ip link set client0 up # the second cable is for who wants it
for side in client product; do
  start_bus "$side.bus"
  configure_avahi "$side"
done
export -f avahi
network=$network in_product bash -c 'avahi product' >"$network/product.log" 2>&1 &
until_true 20 "the product's daemon" owns_avahi product.bus
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$network/client.bus
