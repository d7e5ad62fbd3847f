# shellcheck shell=bash
# Functions that make, boot and enter a fresh Debian: a machine with systemd, on which `user` has a
# checkout and may become root by sudo. Its network is loopback.
#
# The script that sources this is root, has a mount namespace of its own, works in the checkout and
# defines fail(). It calls make_base, make_root, boot, and at its end shut_down.

readonly packages=build/package
readonly base=$packages/base
readonly root=$packages/root
readonly groups=$packages/groups
readonly group=$groups/connTester-$$
readonly checkout=$root/home/user/connTester

# What a workstation has beside the least that a Debian can be.
readonly furniture=(cron dbus-user-session iproute2 libpam-systemd man-db sudo systemd-sysv)

# The base of all fresh roots. It stays until it is removed by hand.
make_base() {
  [[ -e $base/finished ]] && return
  rm -rf "$base"
  local codename mirror
  codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
  # shellcheck disable=SC2016 # a field of apt's
  mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' \
    "Codename: $codename" | head -n 1)
  timeout 600 debootstrap --variant=minbase "$codename" "$base" "$mirror" >"$packages/base.log" ||
    fail "debootstrap failed: $(tail -n 3 "$packages/base.log")"
  furnish_base
  touch "$base/finished"
}

furnish_base() {
  cp /etc/resolv.conf "$base/etc/"
  echo force-unsafe-io >"$base/etc/dpkg/dpkg.cfg.d/unsafe"
  # The user says yes to apt, and presses the return key when a package asks.
  echo 'APT::Get::Assume-Yes "true";' >"$base/etc/apt/apt.conf.d/assume-yes"
  echo debconf debconf/frontend select Noninteractive | chroot "$base" debconf-set-selections
  {
    chroot "$base" apt-get update
    chroot "$base" apt-get install --no-install-recommends "${furniture[@]}"
    chroot "$base" apt-get clean
  } >"$packages/base.log" 2>&1 || fail "apt failed: $(tail -n 3 "$packages/base.log")"
  rm -r "$base"/var/lib/apt/lists/*
  chroot "$base" useradd --create-home --shell /bin/bash user
  echo 'user ALL = NOPASSWD: ALL' >"$base/etc/sudoers.d/user"
  echo machine >"$base/etc/hostname"
  echo '127.0.0.1 localhost machine' >"$base/etc/hosts"
}

make_root() {
  rm -rf "$root"
  cp -a "$base" "$root"
  cp /etc/resolv.conf "$root/etc/"
  make_checkout
}

make_checkout() {
  rm -rf "$checkout"
  mkdir "$checkout"
  tar --create --exclude=./build --exclude=./.git . | tar --extract --directory "$checkout"
  chown -R --reference="$root/home/user" "$checkout"
}

boot() {
  mkdir -p "$groups"
  mount -t cgroup2 cgroup2 "$groups" || fail "this machine gives no control groups to another one."
  mkdir "$group"
  # shellcheck disable=SC2016 # the arguments of the shell
  sh -c 'echo $$ >"$1/cgroup.procs" && exec tests/packaging/boot_machine "$2"' sh \
    "$group" "$root" >"$packages/boot.log" 2>&1 &
  launcher=$!
  disown
  wait_for has_booted || fail "the machine does not boot: $(cat "$packages/boot.log")"
}

# Finds the machine's first process, too.
has_booted() {
  read -rd ' ' machine <"/proc/$launcher/task/$launcher/children" &&
    [[ $(inside systemctl is-system-running) == @(running|degraded) ]]
}

# Waits half a minute at most until a command succeeds.
wait_for() {
  local tries=300
  until "$@" 2>/dev/null; do
    ((tries-- > 0)) || return 1
    sleep 0.1
  done
}

# The machine's processes end with its launcher.
shut_down() {
  [[ -n ${launcher-} ]] || return 0
  kill -KILL "$launcher" || true
  wait_for grep -qx 'populated 0' "$group/cgroup.events"
  find "$group" -depth -type d -exec rmdir {} +
}

# Runs a command as root on the machine, but on the network of this one, which reaches the archive.
inside_online() {
  timeout 600 nsenter --target "$machine" --mount --uts --ipc --pid --cgroup "$@" </dev/null
}

# The same on the machine's own network, which is loopback.
inside() {
  inside_online --net "$@"
}
