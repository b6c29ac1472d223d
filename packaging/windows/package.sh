#!/usr/bin/env bash
# Lays out the Windows program folder and packs it twice: a setup program (NSIS) and a zip.
#   package.sh BUILD_DIR VERSION DLL... -- PLUGIN...
# with Qt's translations from BUILD_DIR/translations.
# run in the Windows SDK: DLLs are named from there, plugins from its qt/plugins.
set -euo pipefail
build=$1 version=$2
shift 2
name=qivo-review-$version-win64
folder=$build/$name
rm -rf "$folder" "$build/$name.zip" "$build/$name-setup.exe"
mkdir -p "$folder"
strip=x86_64-w64-mingw32-strip
$strip -o "$folder/qivo-review.exe" "$build/qivo-review.exe"
$strip -o "$folder/qivo-demo-db.exe" "$build/qivo-demo-db.exe"
while [ "$1" != "--" ]; do
  $strip -o "$folder/$(basename "$1")" "$1"
  shift
done
shift
for plugin in "$@"; do
  mkdir -p "$folder/$(dirname "$plugin")"
  $strip -o "$folder/$plugin" "qt/plugins/$plugin"
done
cp -r "$build/translations" "$folder/"
(cd "$build" && zip -qr "$name.zip" "$name")
here=$(dirname "$(realpath "$0")")
makensis -V2 -INPUTCHARSET UTF8 -DVERSION="$version" -DFOLDER="$(realpath "$folder")" \
  -DOUTFILE="$(realpath "$build")/$name-setup.exe" -DICON="$here/qivo-review.ico" \
  "$here/qivo-review.nsi"
ls -l "$build/$name-setup.exe" "$build/$name.zip" | awk '{print $5, $9}'
