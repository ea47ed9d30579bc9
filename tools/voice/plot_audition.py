#!/usr/bin/env python3
"""plot_audition.py BEFORE.wav AFTER.wav TRACE.csv OUT.png - draws what audition did to a voice: the spectrograms
before and after, the level in dBFS, and the squelch's gate and burst gain. TRACE.csv comes from the audition program."""
import csv
import sys
import wave

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

RATE_HZ = 48000
FULL_SCALE = 32767.0


def read_mono(path):
    with wave.open(path, "rb") as file:
        samples = np.frombuffer(file.readframes(file.getnframes()), dtype="<i2").astype(float)
        return samples.reshape(-1, file.getnchannels())[:, 0] / FULL_SCALE


def level_db(samples, window=960):
    """RMS of each 20 ms in dBFS, -100 for silence."""
    blocks = samples[: len(samples) // window * window].reshape(-1, window)
    rms = np.sqrt((blocks**2).mean(axis=1))
    return np.arange(len(rms)) * window / RATE_HZ, 20 * np.log10(np.maximum(rms, 1e-5))


def spectrogram(axis, samples, title):
    axis.specgram(samples, NFFT=1024, Fs=RATE_HZ, noverlap=768, cmap="magma", vmin=-140, vmax=-40)
    axis.set_ylim(0, 8000)
    axis.set_ylabel("Hz")
    axis.set_title(title, loc="left", fontsize=10)


def main(before_path, after_path, trace_path, out_path):
    before, after = read_mono(before_path), read_mono(after_path)
    with open(trace_path, newline="", encoding="ascii") as file:
        rows = list(csv.DictReader(file))
    trace = {name: [float(row[name]) for row in rows] for name in ("seconds", "gate", "burst")}
    figure, axes = plt.subplots(4, 1, figsize=(11, 10), sharex=True, height_ratios=[3, 3, 2, 1.2])
    spectrogram(axes[0], before, "before")
    spectrogram(axes[1], after, "after")
    for samples, name in ((before, "before"), (after, "after")):
        axes[2].plot(*level_db(samples), label=name, linewidth=1)
    axes[2].set_ylabel("level, dBFS")
    axes[2].set_ylim(-90, 0)
    axes[2].grid(alpha=0.3)
    axes[2].legend(loc="lower right", fontsize=8)
    for name in ("gate", "burst"):
        axes[3].plot(trace["seconds"], trace[name], label=name, linewidth=1)
    axes[3].set_ylabel("gain")
    axes[3].legend(loc="lower right", fontsize=8)
    axes[3].set_ylim(-0.05, 1.05)
    axes[3].grid(alpha=0.3)
    axes[3].set_xlabel("s")
    figure.tight_layout()
    figure.savefig(out_path, dpi=100)


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    main(*sys.argv[1:])
