#!/usr/bin/env bash
# make_package.sh BUILD_FOLDER OUT_FOLDER - the installable package, OUT_FOLDER/corvalis-VERSION.ts3_plugin: a ZIP with
# package.ini at its root, the DLL with its worker under plugins/, the quick starts and the licences under
# plugins/corvalis/. Opened in Explorer, it starts the voice client's installer. The same sources and tools give the same
# bytes on every machine: no user, no time zone and no time of building gets in. Prints the package's path.
set -euo pipefail
build=$(realpath "$1")
out=$(realpath -m "$2")
here=$(cd "$(dirname "$0")" && pwd)

# plain_text FILE.md - as a text that Windows opens by itself: UTF-8 with its mark, lines ended by CR LF; without the
# pictures, and a link is the name of what it leads to, in the sources.
plain_text() {
    printf '\xEF\xBB\xBF'
    LC_ALL=C sed -E '/^!\[/d; s/\[([^]]*)\]\(([^)]*)\)/\1 (docs\/\2)/g' "$1" | cat -s | sed 's/$/\r/'
}

staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
mkdir -p "$staging/plugins/corvalis"
cp "$build/package.ini" "$staging/"
cp "$build/bin/corvalis_win64.dll" "$build/bin/hopline_worker.exe" "$staging/plugins/"
cp "$here/../LICENSE" "$staging/plugins/corvalis/LICENSE.txt"
cp "$here"/licences/*.txt "$staging/plugins/corvalis/"
for guide in "$here"/../docs/quick-start.*.md; do
    plain_text "$guide" >"$staging/plugins/corvalis/$(basename "$guide" .md).txt"
done

version=$(sed -n 's/^Version = //p' "$staging/package.ini")
package="$out/corvalis-$version.ts3_plugin"
mkdir -p "$out"
rm -f "$package"
cd "$staging"
export TZ=UTC
chmod -R u=rwX,go=rX .
find . -exec touch -h -d '2026-01-01 00:00:00' {} +
find . -type f | LC_ALL=C sort | sed 's|^\./||' | zip -X -9 -q "$package" -@
echo "$package"
