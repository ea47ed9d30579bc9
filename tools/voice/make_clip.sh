#!/usr/bin/env bash
# make_clip.sh - how clip.wav was made: a synthetic pilot (espeak-ng), two calls, in a cockpit hum and hiss some 30 dB below.
# 48 kHz, mono, 16 bit. Needs espeak-ng and sox.
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
espeak-ng -v en-us+m3 -s 165 -w "$work/call.wav" "Tower, Corvalis one two three, ready."
espeak-ng -v en-us+m3 -s 165 -w "$work/reply.wav" "Cleared for take off."
for call in call reply; do
    sox "$work/$call.wav" -r 48000 -c 1 -b 16 "$work/$call-48.wav" norm -6 pad 0.3 0.3
done
sox "$work/call-48.wav" "$work/reply-48.wav" "$work/speech.wav"
seconds=$(soxi -D "$work/speech.wav")
sox -R -n -r 48000 -c 1 -b 16 "$work/cockpit.wav" synth "$seconds" brownnoise synth "$seconds" sine mix 118 gain -34
sox -R -m -v 1 "$work/speech.wav" -v 0.3 "$work/cockpit.wav" -b 16 clip.wav
