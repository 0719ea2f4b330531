#!/bin/bash
# Checks style: clang-format, the caps of the house, clang-tidy.
#
#   tools/tidy.sh              the C++ files that differ from the main branch's last commit
#   tools/tidy.sh --all        every C++ file
#   tools/tidy.sh FILE...      these
set -euo pipefail

invoked_from=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."

files=()
if [[ ${1:-} == --all ]]; then
  mapfile -t files < <(git ls-files -- '*.cpp' '*.h')
elif (($# > 0)); then
  for file in "$@"; do
    files+=("$(realpath --relative-to=. "$(cd "$invoked_from" && realpath "$file")")")
  done
else
  mapfile -t files < <({
    git diff --name-only --diff-filter=d HEAD -- '*.cpp' '*.h'
    git ls-files --others --exclude-standard -- '*.cpp' '*.h'
  } | sort -u)
fi
if ((${#files[@]} == 0)); then
  echo "tidy: no C++ file has changed"
  exit 0
fi

tools/setup.sh build tidy
status=0
clang-format --dry-run --Werror "${files[@]}" || status=1
tools/check_caps.py "${files[@]}"

# moc's output must exist for the files that include it.
tools/build.sh release || echo "tidy: the build fails; what follows may be its echo" >&2
tools/clang_db.py build/release build/tidy

# Headers are seen through the files that include them; those that nobody compiles have no entry.
sources=()
for file in "${files[@]}"; do
  if [[ $file == *.cpp ]] && grep -qF "\"$PWD/$file\"" build/tidy/compile_commands.json; then sources+=("$file"); fi
done
if ((${#sources[@]} > 0)); then
  printf '%s\0' "${sources[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/tidy --quiet 2> >(grep -vE '^[0-9]+ warnings? |^Suppressed |^Use -header' >&2) || status=1
fi
if ((status == 0)); then echo "tidy: ${#files[@]} files, nothing to say"; fi
exit "$status"
