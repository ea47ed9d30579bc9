#!/usr/bin/env bash
# render.sh [theme...] - renders the panel's artwork (general, boeing, airbus; all of them by default) into resources/ and
# checks it. SAMPLES (16) is light samples a pixel; OUT (resources/) where the pictures go. Installs nothing:
# tools/packages.sh artwork does. Two processor cores take about three minutes a theme.
set -euo pipefail
cd "$(dirname "$0")"

samples=${SAMPLES:-16}
out=$(realpath "${OUT:-../../resources}")
themes=("$@")
[ $# -gt 0 ] || themes=(general boeing airbus)

missing=()
command -v blender >/dev/null || missing+=(blender)
[ -f /usr/share/fonts/opentype/b612/B612-Bold.otf ] || missing+=(fonts-b612)
/usr/bin/python3 -c 'import numpy' 2>/dev/null || missing+=(python3-numpy)
/usr/bin/python3 -c 'import PIL' 2>/dev/null || missing+=(python3-pil)
if [ ${#missing[@]} -gt 0 ]; then
    echo "render.sh needs ${missing[*]} (tools/packages.sh artwork installs them)" >&2
    exit 1
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for theme in "${themes[@]}"; do
    [ -f "theme_$theme.py" ] || { echo "render.sh: no theme $theme" >&2; exit 2; }
    echo "Rendering $theme with $samples samples"
    # Blender ends with 0 even when its script failed: what counts is whether there is a picture.
    nice -n 10 blender -b -noaudio --factory-startup -P render_theme.py -- "$theme" "$samples" "$work/panel.png" \
        >"$work/log" 2>&1 || true
    [ -s "$work/panel.png" ] || { cat "$work/log" >&2; exit 1; }
    mv "$work/panel.png" "$out/panel_$theme.png"
done
if [ -z "${OUT:-}" ]; then ./check_art.py; fi
