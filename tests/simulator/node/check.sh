#!/usr/bin/env bash
# check.sh BIN_FOLDER MODULES_FOLDER - installs the pinned packages into MODULES_FOLDER, once, and runs check.mjs with
# the programs in BIN_FOLDER. Needs the network for the installation; without it, and without an installation, it fails.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bin=$1
modules=$2

mkdir -p "$modules"
if ! cmp -s "$here/package-lock.json" "$modules/installed-lock.json"; then
    cp "$here/package.json" "$here/package-lock.json" "$modules/"
    if ! (cd "$modules" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error); then
        echo "check.sh: node-simconnect could not be installed (is there a network?)" >&2
        exit 1
    fi
    cp "$here/package-lock.json" "$modules/installed-lock.json"
fi
exec node "$here/check.mjs" "$bin" "$modules"
