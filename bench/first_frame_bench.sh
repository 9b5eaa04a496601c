#!/usr/bin/env bash
# The wait for the main window: from the process's start to the first
# picture of the studio's main window on a real (virtual) X screen, on a
# later start (the library already unpacked). The reference in the same run
# is the stock widgets' demonstration form, which opens a window of the same
# kind with no views, no library and no interface icons.
#
# Usage: bench/first_frame_bench.sh [BUILD_DIR] [RUNS]
set -euo pipefail
build=${1:-build}
runs=${2:-7}
exe="$build/app/quillaron"
work=$(mktemp -d)
. "$(dirname "$0")/common.sh"

display=":$((500 + $$ % 400))"
Xvfb "$display" -screen 0 1600x1000x24 -nolisten tcp > /dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null; rm -rf "$work"' EXIT
for _ in $(seq 100); do [ -e "/tmp/.X11-unix/X${display#:}" ] && break; sleep 0.05; done
export DISPLAY=$display XDG_DATA_HOME="$work/xdg"

app="$work/app"
new_app_folder "$build" "$app"
"$exe" --app-dir "$app" init > /dev/null

first_frame() { "$exe" "$@" --screenshot "$work/shot.png" 2>&1 | sed -n 's/^first frame after \([0-9.]*\) ms$/\1/p'; }
ref=() main=()
for _ in $(seq "$runs"); do
  ref+=("$(first_frame --app-dir "$app" --demo-widgets)")
  main+=("$(first_frame --app-dir "$app")")
done
r=$(printf '%s\n' "${ref[@]}" | median)
m=$(printf '%s\n' "${main[@]}" | median)
echo "first frame, median of $runs later starts"
printf '  reference (demonstration form)  %8.1f ms\n' "$r"
printf '  main window                     %8.1f ms  (%.1fx reference; goal under 300 ms)\n' "$m" \
  "$(awk "BEGIN {print $m / $r}")"
