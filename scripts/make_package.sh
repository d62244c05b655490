#!/usr/bin/env bash
# A zip, an installer and the symbols of programs that are built: make_package.sh x64|x86 BUILD FOLDER
# SOURCE_DATE_EPOCH is the time that the files in the zips have; the same programs and documents give the same bytes.
set -eu
cd "$(dirname "$0")/.."
bits=$1 build=$2 folder=$3
version=$(sed -n 's/.*VELTRA_VERSION "\(.*\)"/\1/p' "$build/resources/version.h")
name=veltratool-$version-$bits
width=64
[ "$bits" = x64 ] || width=32
export TZ=UTC

# zip_of NAME: the staged folder of that name.
zip_of() {
  find "$folder/$1" -exec touch -d "@${SOURCE_DATE_EPOCH:-315532800}" {} +
  rm -f "$folder/$1.zip"
  (cd "$folder" && python3 -m zipfile -c "$1.zip" "$1")
}

rm -rf "${folder:?}/$name" "$folder/$name-symbols"
install -d "$folder/$name/docs" "$folder/$name-symbols"
install -m 644 "$build"/bin/{veltratool,toolprobe,hexinfo}.exe "$build"/bin/macm_{English,Nederlands}.dll \
  "$build"/bin/sarvikkey_{English,Nederlands}.ini "$folder/$name"
scripts/documents.sh "$folder/$name/docs"
install -m 644 "$build"/symbols/*.debug "$folder/$name-symbols"
chmod 644 "$folder/$name"/docs/*
zip_of "$name"
zip_of "$name-symbols"
makensis -V1 -INPUTCHARSET UTF8 -DVERSION="$version" -DWIDTH=$width -DFILES="$(realpath "$folder/$name")" \
  -DOUTPUT="$(realpath "$folder")/$name-setup.exe" setup/veltratool.nsi
rm -r "$folder/$name" "$folder/$name-symbols"
