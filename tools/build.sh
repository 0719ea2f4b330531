#!/bin/bash
# Configures a preset where that was not done yet, and builds the named targets (all when none is named).
#
#   tools/build.sh release quillmark
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=${1:-release}
shift || true
folder=$root/build/$preset

# Programs of the build are started to list their tests, and Qt wants this folder.
if [[ -z ${XDG_RUNTIME_DIR:-} ]]; then
  export XDG_RUNTIME_DIR=$folder/runtime
  mkdir -p "$XDG_RUNTIME_DIR"
  chmod 700 "$XDG_RUNTIME_DIR"
fi

if [[ ! -f $folder/build.ninja ]]; then
  mkdir -p "$folder"
  if ! (cd "$root" && cmake --preset "$preset") >"$folder/configure.log" 2>&1; then
    cat "$folder/configure.log" >&2
    echo "build: 'cmake --preset $preset' failed (see above)" >&2
    exit 1
  fi
fi

if ! ninja -C "$folder" --quiet "$@" | sed '/^ninja: no work to do\.$/d' >&2; then
  echo "build: 'ninja -C build/$preset $*' failed (see above)" >&2
  exit 1
fi
