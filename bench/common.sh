# Shared by the benchmark scripts: timing in milliseconds, medians, and a
# fresh application folder with the shipped databases.

now_ms() { date +%s%N | awk '{printf "%.1f", $1 / 1e6}'; }
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR + 1) / 2)]}'; }

# new_app_folder BUILD_DIR FOLDER
new_app_folder() {
  mkdir -p "$2/Database" "$2/Dat" "$2/DocAndImages"
  cp "$1/shipped/Library.db" "$1/shipped/Resources.db" "$2/Database/"
  cp tools/data/Quillaron.ini "$2/Dat/"
  cp tools/data/Quillaron.svg "$2/DocAndImages/"
}
