#!/bin/bash
# Installs what is missing, builds everything and runs every test, without a display:
#
#   ./test.sh [PRESET] [CTEST-OPTION...]
#   ./test.sh                          release
#   ./test.sh asan-ubsan -R editor     the editor's tests under the sanitizers
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
preset=release
if [[ $# -gt 0 && $1 != -* ]]; then
  preset=$1
  shift
fi
case $preset in
  release | debug | asan-ubsan) ;;
  *)
    echo "test: no preset '$preset' (there are release, debug and asan-ubsan)" >&2
    exit 2
    ;;
esac

"$root/tools/setup.sh" build run test
"$root/tools/build.sh" "$preset"

# A test that needs a display starts its own.
unset DISPLAY WAYLAND_DISPLAY
log=$root/build/$preset/ctest.log
status=0
ctest --test-dir "$root/build/$preset" --parallel "$(nproc)" --output-on-failure --no-tests=error "$@" \
  >"$log" 2>&1 </dev/null || status=$?

# Of a good run the closing lines, of a bad one what went wrong as well.
if ((status == 0)); then
  sed -n '/% tests passed/,$p' "$log"
else
  grep -vE '^ +Start +[0-9]+: |^ *[0-9]+/[0-9]+ Test +#[0-9]+: .* +Passed ' "$log" | sed -E 's/ ?\.{4,}/ ... /' || true
  echo "test: the whole report is build/$preset/ctest.log" >&2
fi
exit "$status"
