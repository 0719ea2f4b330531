#!/bin/bash
# Installs the Debian packages of the named groups of tools/packages.txt that are missing.
#
#   tools/setup.sh build run     what ./run.sh needs
#   tools/setup.sh --list test   only names the missing packages
#
# QUILLMARK_SKIP_SETUP=1 skips it, for systems without apt where the packages came another way.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
  echo "setup: $*" >&2
  exit 1
}

packages_of() {
  local group=$1 section='' found='' line
  while read -r line; do
    case $line in
      '' | '#'*) ;;
      "[$group]") section=$group found=yes ;;
      '['*) section='' ;;
      *) if [[ $section == "$group" ]]; then echo "$line"; fi ;;
    esac
  done <"$root/tools/packages.txt"
  [[ -n $found ]] || fail "no group '$group' in tools/packages.txt"
}

# Those of the given packages that are not installed.
missing_of() {
  local installed
  # shellcheck disable=SC2016  # the placeholders are dpkg's
  installed=$(dpkg-query -W -f '${db:Status-Abbrev}${Package}\n' "$@" 2>/dev/null | sed -n 's/^.i //p' || true)
  printf '%s\n' "$@" | grep -vxF -f <(printf '%s\n' "$installed") || true
}

install_missing() {
  local log=$root/build/setup.log
  local apt=(apt-get -o DPkg::Lock::Timeout=300) as_root=(env DEBIAN_FRONTEND=noninteractive) shown='apt-get'
  if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "missing: $*; run as root: apt-get install $*"
    as_root=(sudo env DEBIAN_FRONTEND=noninteractive)
    # Without a terminal nobody could type a password.
    [[ -t 0 ]] || as_root=(sudo -n env DEBIAN_FRONTEND=noninteractive)
    shown='sudo apt-get'
  fi
  mkdir -p "$root/build"
  echo "setup: installing $*" >&2
  # An update that fails for one source may still have brought what is needed; the installation tells.
  "${as_root[@]}" "${apt[@]}" -qq update >"$log" 2>&1 </dev/null || true
  if ! "${as_root[@]}" "${apt[@]}" -qq -y --no-install-recommends install "$@" >>"$log" 2>&1 </dev/null; then
    local reason
    reason=$(grep -E '^(E:|sudo:)' "$log" | tail -1 || true)
    fail "could not install$(missing_of "$@" | tr '\n' ' ' | sed 's/^/ /; s/ $//') with '$shown install' (${reason:-no reason given}; see build/setup.log)"
  fi
}

list_only=
if [[ ${1:-} == --list ]]; then
  list_only=yes
  shift
fi
(($# > 0)) || fail "name at least one group of tools/packages.txt"
[[ -z ${QUILLMARK_SKIP_SETUP:-} ]] || exit 0

wanted=()
for group in "$@"; do
  names=$(packages_of "$group")
  mapfile -t -O "${#wanted[@]}" wanted <<<"$names"
done

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  fail "this system has no apt-get; install what tools/packages.txt names ($*), then set QUILLMARK_SKIP_SETUP=1"
fi

mapfile -t missing < <(missing_of "${wanted[@]}" | sort -u)
if ((${#missing[@]} == 0)); then exit 0; fi
if [[ -n $list_only ]]; then
  printf '%s\n' "${missing[@]}"
else
  install_missing "${missing[@]}"
fi
