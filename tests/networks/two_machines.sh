# shellcheck shell=bash
# A network of two machines: this workstation (10.9.0.1, fd00::1), and a server (10.9.0.2, fd00::2) at the
# other end of a cable. Sourced behind support/private_machine --own-network.

# shellcheck disable=SC2034 # used by the scripts
server=10.9.0.2
server_log=/tmp/server.log

in_server() {
  nsenter --target "$server_machine" --net "$@"
}

# The server is a network namespace, which lives as long as its first process.
lay_cable() {
  unshare --net sleep infinity &
  server_machine=$!
  while [[ /proc/$server_machine/ns/net -ef /proc/self/ns/net ]]; do sleep 0.01; done
  ip link add cable type veth peer name cable netns "$server_machine"
  ip address add 10.9.0.1/24 dev cable
  ip address add fd00::1/64 dev cable nodad
  ip link set cable up
  in_server ip address add 10.9.0.2/24 dev cable
  in_server ip address add fd00::2/64 dev cable nodad
  in_server ip link set cable up
  # The first packet of either protocol waits until the other end is known.
  ping -c 1 10.9.0.2 >/dev/null
  ping -c 1 fd00::2 >/dev/null
}

# Leaves the number of the server's process in `server_process`.
start_server() {
  : >"$server_log"
  nsenter --target "$server_machine" --net iperf3 --server --forceflush >"$server_log" 2>&1 &
  # shellcheck disable=SC2034 # used by the scripts
  server_process=$!
  until grep --quiet '^Server listening' "$server_log"; do sleep 0.01; done
}
