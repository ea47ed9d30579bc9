#!/usr/bin/env bash
# check_package.sh BUILD_FOLDER FOLDER - makes the package twice, under circumstances that must not matter, and unpacks it
# into FOLDER/unpacked, where the client tests then find the DLL and the worker. Ends with 0 only if both packages are
# the same byte for byte, hold what they should and no more, and the DLL has at most 8 MB.
set -euo pipefail
build=$1
folder=$2
here=$(cd "$(dirname "$0")" && pwd)
max_dll_bytes=8388608

rm -rf "$folder"
mkdir -p "$folder"
package=$("$here/make_package.sh" "$build" "$folder/once")
sleep 2  # a ZIP counts time in steps of two seconds
again=$(cd / && umask 077 && TZ=Asia/Tokyo LC_ALL=C "$here/make_package.sh" "$build" "$folder/again")
cmp "$package" "$again" || { echo "the same files made two different packages" >&2; exit 1; }
[ "$(basename "$package")" = "$(basename "$again")" ]

python3 - "$package" "$folder/unpacked" <<'PYTHON'
import os, sys, zipfile
package, folder = sys.argv[1:]
languages = ['de', 'en', 'es', 'fr', 'ja', 'ko', 'ru', 'zh-CN', 'zh-TW']
guides = [f'plugins/corvalis/quick-start.{language}.txt' for language in languages]
expected = [*guides, 'package.ini', 'plugins/corvalis/LICENSE.txt', 'plugins/corvalis/gcc-runtime.txt',
            'plugins/corvalis/mingw-w64-runtime.txt', 'plugins/corvalis_win64.dll', 'plugins/hopline_worker.exe']
with zipfile.ZipFile(package) as archive:
    names = sorted(archive.namelist())
    if names != sorted(expected):
        sys.exit(f'the package holds {names}')
    if archive.testzip() is not None:
        sys.exit('the package is damaged')
    ini = archive.read('package.ini').decode('utf-8')
    keys = [line.split(' = ')[0] for line in ini.splitlines()]
    if keys != ['Name', 'Type', 'Author', 'Version', 'Platforms', 'Description']:
        sys.exit(f'package.ini holds {keys}')
    for guide in guides:
        text = archive.read(guide).decode('utf-8')
        if not text.startswith('\ufeff# Corvalis') or text.count('\n') != text.count('\r\n'):
            sys.exit(f'{guide} is no text for Windows')
        if '](' in text:
            sys.exit(f'{guide} has links that lead nowhere')
        # The file to open, the clients and the Windows that fit.
        for said in (os.path.basename(package), '64', '3.3', '1607'):
            if said not in text:
                sys.exit(f'{guide} does not say {said}')
    archive.extractall(folder)
PYTHON

bytes=$(stat -c %s "$folder/unpacked/plugins/corvalis_win64.dll")
[ "$bytes" -le $max_dll_bytes ] || { echo "the DLL has $bytes bytes" >&2; exit 1; }
echo "$(basename "$package"): $(stat -c %s "$package") bytes, DLL $bytes bytes"
