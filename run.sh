#!/bin/bash
# Installs what is missing, builds Quillmark and starts it:   ./run.sh [FILE...]
# Without a display it starts on a virtual one and says how to look at it.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=$root/build/release/quillmark

needs_display() {
  [[ -z ${DISPLAY:-}${WAYLAND_DISPLAY:-}${QT_QPA_PLATFORM:-} ]] || return 1
  local argument
  for argument in "$@"; do
    case $argument in
      --) return 0 ;;
      --help | -h | --version | -v | --convert) return 1 ;;
    esac
  done
}

start_on_virtual_display() {
  local number status=0 helpers=()
  # The server chooses a free number and writes it when it is ready.
  coproc XVFB { exec Xvfb -displayfd 1 -screen 0 1280x900x24 -nolisten tcp 2>/dev/null; }
  helpers+=("$XVFB_PID")
  # shellcheck disable=SC2064  # the process is known now
  trap "kill $XVFB_PID 2>/dev/null || true" EXIT
  if ! read -r -t 30 number <&"${XVFB[0]}"; then
    echo "run: the virtual display did not start (Xvfb)" >&2
    return 1
  fi
  export DISPLAY=:$number
  if [[ -z ${XDG_RUNTIME_DIR:-} ]]; then
    export XDG_RUNTIME_DIR=$root/build/runtime
    mkdir -p "$XDG_RUNTIME_DIR"
    chmod 700 "$XDG_RUNTIME_DIR"
  fi
  openbox >/dev/null 2>&1 &
  helpers+=("$!")
  # shellcheck disable=SC2064
  trap "kill ${helpers[*]} 2>/dev/null || true" EXIT
  cat >&2 <<MESSAGE
No display found: Quillmark runs on the virtual display $DISPLAY.
Look at it with:    x11vnc -display $DISPLAY -localhost     and a VNC viewer at localhost:5900,
or take a picture:  import -display $DISPLAY -window root quillmark.png
MESSAGE
  "$program" "$@" || status=$?
  return "$status"
}

"$root/tools/setup.sh" build run
"$root/tools/build.sh" release quillmark

if needs_display "$@"; then
  "$root/tools/setup.sh" display
  start_on_virtual_display "$@"
else
  exec "$program" "$@"
fi
