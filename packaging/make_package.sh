#!/usr/bin/env bash
# make_package.sh BIN_FOLDER OUT_FILE - the installable package: a ZIP with package.ini at its root and the DLL with
# its worker under plugins/. Opened in Explorer, it starts the voice client's installer.
set -euo pipefail
bin=$1
out=$(realpath -m "$2")
here=$(cd "$(dirname "$0")" && pwd)

staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
mkdir "$staging/plugins"
cp "$here/package.ini" "$staging/"
cp "$bin/corvalis_win64.dll" "$bin/hopline_worker.exe" "$staging/plugins/"

mkdir -p "$(dirname "$out")"
rm -f "$out"
cd "$staging"
cmake -E tar cf "$out" --format=zip package.ini plugins/corvalis_win64.dll plugins/hopline_worker.exe
