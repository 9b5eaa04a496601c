#!/usr/bin/env bash
# Batch export as the user waits for it: whole-process times of
# `quillaron export` over 500 library icons, against a reference program in
# the same run that draws the same documents with librsvg and writes PNGs.
#   (a) one-layer design, 256 px PNG     / reference   goal <= 1.3
#   (b) six-layer design, 256 px PNG     / reference   goal <= 3
#   (c) one-layer design, ICO, 8 sizes   / (a)         goal <= 2
#
# Usage: bench/export_bench.sh [BUILD_DIR] [RUNS]
set -euo pipefail
build=${1:-build}
runs=${2:-3}
exe="$build/app/quillaron"
ref="$build/bench/export_reference"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
. "$(dirname "$0")/common.sh"

app="$work/app"
new_app_folder "$build" "$app"
"$exe" --app-dir "$app" init > /dev/null
ids=$("$ref" --app-dir "$app" --ids)
"$ref" --app-dir "$app" --designs "$work"

# Runs a command $runs times into a fresh folder each time; prints the median ms.
timed() {
  local times=()
  for i in $(seq "$runs"); do
    rm -rf "$work/out" && mkdir -p "$work/out"
    local t0 t1
    t0=$(now_ms); "$@" > /dev/null; t1=$(now_ms)
    times+=("$(awk "BEGIN {print $t1 - $t0}")")
  done
  printf '%s\n' "${times[@]}" | median
}

r=$(timed "$ref" --app-dir "$app" --render "$ids" --out "$work/out")
a=$(timed "$exe" --app-dir "$app" export --design-file "$work/one.json" --ids "$ids" --out "$work/out" \
  --size 256x256 --rename-duplicates)
b=$(timed "$exe" --app-dir "$app" export --design-file "$work/six.json" --ids "$ids" --out "$work/out" \
  --size 256x256 --rename-duplicates)
c=$(timed "$exe" --app-dir "$app" export --design-file "$work/one.json" --ids "$ids" --out "$work/out" \
  --format ICO --rename-duplicates)
files=$(ls "$work/out" | wc -l)
echo "export of 500 library icons, median of $runs runs ($files files in the last run)"
printf '  reference: librsvg + PNG        %8.0f ms\n' "$r"
printf '  (a) one layer, PNG 256          %8.0f ms  %.2fx reference (goal <= 1.3)\n' "$a" "$(awk "BEGIN {print $a / $r}")"
printf '  (b) six layers, PNG 256         %8.0f ms  %.2fx reference (goal <= 3)\n' "$b" "$(awk "BEGIN {print $b / $r}")"
printf '  (c) one layer, ICO of 8 sizes   %8.0f ms  %.2fx (a)         (goal <= 2)\n' "$c" "$(awk "BEGIN {print $c / $a}")"
