#!/usr/bin/env bash
# Lays out the Windows release from a cross build: BUILD_DIR/release/Vantoro
# with the two programs, the data the program reads (voice packs included),
# README-Windows.txt and the licences, and BUILD_DIR/release/Vantoro.zip.
# The voice packs must have been rendered into data/Sound (make voices).
#
#   scripts/release-windows.sh BUILD_DIR
set -euo pipefail

source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:?usage: release-windows.sh BUILD_DIR}" && pwd)
out="$build/release"
folder="$out/Vantoro"

for exe in vantoro.exe vantoro-cli.exe; do
  [ -f "$build/bin/$exe" ] || { echo "release-windows: $build/bin/$exe is missing" >&2; exit 1; }
done
packs=$(find "$source_dir/data/Sound" -mindepth 1 -maxdepth 1 -type d 2>/dev/null | wc -l)
if [ "$packs" -lt 2 ]; then
  echo "release-windows: the voice packs are missing from data/Sound (make voices)" >&2
  exit 1
fi
if [ ! -f "$source_dir/data/web/lib/chart.min.js" ]; then
  echo "release-windows: data/web/lib/chart.min.js is missing (make build copies it)" >&2
  exit 1
fi

rm -rf "$out"
mkdir -p "$folder/data" "$folder/licences"
for exe in vantoro.exe vantoro-cli.exe; do
  x86_64-w64-mingw32-strip -o "$folder/$exe" "$build/bin/$exe"
done

# The data as delivered: what the repository holds, the voice packs rendered
# from its captions and the charting library, nothing a run has left behind.
(cd "$source_dir" && git ls-files -z data) | (cd "$source_dir" && xargs -0 cp --parents -t "$folder")
(cd "$source_dir" && cp -r --parents data/Sound data/web/lib "$folder")
find "$folder/data/Sound" -name '.voicepack' -delete

# Text files for Windows have CR LF line ends.
sed 's/$/\r/' "$source_dir/scripts/README-Windows.txt" >"$folder/README-Windows.txt"
cp "$source_dir/LICENSE" "$folder/licences/Vantoro-LICENSE.txt"
licence() {  # name in the folder, Debian package whose copyright file it is
  sed 's/$/\r/' "/usr/share/doc/$2/copyright" >"$folder/licences/$1.txt"
}
licence cpp-httplib libcpp-httplib-dev
licence nlohmann-json nlohmann-json3-dev
licence CLI11 libcli11-dev
licence zlib libz-mingw-w64
licence mingw-w64-runtime mingw-w64-x86-64-dev
licence gcc-runtime gcc-mingw-w64-base
licence Chart.js libjs-chart.js

(cd "$out" && rm -f Vantoro.zip && zip -qr -X Vantoro.zip Vantoro)
files=$(find "$folder" -type f | wc -l)
size=$(du -sh "$folder" | cut -f1)
zip_size=$(du -h "$out/Vantoro.zip" | cut -f1)
echo "release-windows: $folder ($files files, $size); $out/Vantoro.zip ($zip_size)"
