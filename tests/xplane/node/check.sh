#!/usr/bin/env bash
# check.sh BIN_FOLDER LIBRARY_FOLDER - fetches the client library into LIBRARY_FOLDER, once, and runs check.mjs with the
# programs in BIN_FOLDER. Needs the network for the fetching; without it, and without a copy, it fails. The library is
# one source file and needs nothing but Node.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bin=$1
folder=$2
package=@shiari/xplane-node-udp-client@0.1.0
archive=shiari-xplane-node-udp-client-0.1.0.tgz
sum=712c711e8b20de069ba299aaca08fcec7940741ac07c03dba7fe6a4ec8c74043

mkdir -p "$folder"
is_fetched() {
    (cd "$folder" && echo "$sum  $archive" | sha256sum --check --status 2>/dev/null)
}
if ! is_fetched; then
    if ! (cd "$folder" && npm pack --silent "$package" >/dev/null) || ! is_fetched; then
        echo "check.sh: $package could not be fetched (is there a network?), or is not what it was" >&2
        exit 1
    fi
fi
tar -xzf "$folder/$archive" -C "$folder"
exec node "$here/check.mjs" "$bin" "$folder/package/src/XPlaneLegacyClient.js"
