#!/usr/bin/env bash
# Start-up as the user waits for it: the whole process of `quillaron init`
# on a fresh copy of the shipped databases (the first start, which unpacks
# the library), then again on the same folder (every later start). The
# reference in the same run is `quillaron --version`: a process that loads
# the same program and libraries but opens nothing.
#
# Usage: bench/startup_bench.sh [BUILD_DIR] [RUNS]
set -euo pipefail
build=${1:-build}
runs=${2:-5}
exe="$build/app/quillaron"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
. "$(dirname "$0")/common.sh"

ref=() first=() later=()
for i in $(seq "$runs"); do
  app="$work/app$i"
  new_app_folder "$build" "$app"
  t0=$(now_ms); "$exe" --version > /dev/null; t1=$(now_ms)
  "$exe" --app-dir "$app" init > /dev/null; t2=$(now_ms)
  "$exe" --app-dir "$app" init > /dev/null; t3=$(now_ms)
  ref+=("$(awk "BEGIN {print $t1 - $t0}")")
  first+=("$(awk "BEGIN {print $t2 - $t1}")")
  later+=("$(awk "BEGIN {print $t3 - $t2}")")
done
r=$(printf '%s\n' "${ref[@]}" | median)
f=$(printf '%s\n' "${first[@]}" | median)
l=$(printf '%s\n' "${later[@]}" | median)
icons=$("$exe" --app-dir "$work/app1" init | sed -n 's/Library: \([0-9]*\) icons.*/\1/p')
echo "startup, median of $runs runs, library of $icons icons"
printf '  reference (--version)  %8.1f ms\n' "$r"
printf '  first start (import)   %8.1f ms  (%.1fx reference)\n' "$f" "$(awk "BEGIN {print $f / $r}")"
printf '  later start            %8.1f ms  (%.1fx reference)\n' "$l" "$(awk "BEGIN {print $l / $r}")"
