# shellcheck shell=bash
# Read by checks that need a Debian of their own: a fresh root of a release, and commands within it.
#
# The mirror is the one of the running system, and so are npm's registry and certificates. A root goes with the
# process that made it, and so do the processes in it.

root=

# The codename of a Debian release.
codename() {
  case $1 in
    12) echo bookworm ;;
    13) echo trixie ;;
    *) echo "no release of Debian that is supported: $1" >&2; return 1 ;;
  esac
}

debian_mirror() {
  apt-get indextargets --format '$(ORIGIN) $(REPO_URI)' 'Created-By: Packages' 'Component: main' |
    awk '$1 == "Debian" && $2 !~ /security/ { print $2; exit }'
}

# make_root RELEASE [PACKAGE...]: sets $root, a folder that goes when the script ends or makes another one.
make_root() {
  local release packages
  release=$(codename "$1")
  shift
  if [ "$(id -u)" != 0 ] || ! command -v debootstrap >/dev/null; then
    echo "$0: needs root and debootstrap" >&2
    exit 1
  fi
  [ -z "$root" ] || rm -rf --one-file-system "$root"
  root=$(mktemp -d)
  trap 'rm -rf --one-file-system "$root"' EXIT
  chmod 755 "$root"
  packages=$(IFS=,; echo "$*")
  quietly debootstrap --variant=minbase --include="ca-certificates${packages:+,$packages}" "$release" "$root" \
    "$(debian_mirror)"
  cp /etc/resolv.conf "$root/etc/"
  echo "127.0.0.1 localhost $(hostname)" >"$root/etc/hosts"
  root_settings >"$root/etc/environment.sh"
}

# What the root takes over from the running system to reach the network as it does.
root_settings() {
  local name value
  for name in http_proxy https_proxy no_proxy; do
    [ -z "${!name:-}" ] || echo "export $name=${!name@Q}"
  done
  command -v npm >/dev/null || return 0
  value=$(npm config get registry 2>/dev/null)
  echo "export npm_config_registry=${value@Q}"
  value=$(npm config get cafile 2>/dev/null)
  [ -f "$value" ] || return 0
  cp "$value" "$root/etc/npm-ca.pem"
  echo "export npm_config_cafile=/etc/npm-ca.pem"
}

# in_root COMMAND: as root, in the root's first folder.
in_root() {
  unshare --mount --pid --fork --kill-child bash -c '
    mount -t devpts -o newinstance,ptmxmode=666 devpts "$1/dev/pts" && mount -t tmpfs -o mode=1777 tmpfs "$1/dev/shm"
    mount -t proc proc "$1/proc"
    exec chroot "$1" /usr/bin/env -i HOME=/root TERM=dumb LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
      PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
      bash -c ". /etc/environment.sh; $2"
  ' in_root "$root" "$1"
}

# Runs a command and shows what it printed only when it fails.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "$0: failed: $*" >&2
    exit 1
  fi
  rm -f "$log"
}
