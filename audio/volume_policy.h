// volume_policy.h - the one volume of the panel's knob and what becomes of it. In percent 0..100: 80 is unity, the
// simulator's full COM volume; above it the plugin itself boosts by up to +6 dB. Pure functions. [any]
#pragma once
#include "settings/settings.h"

inline constexpr float kUnityVolumePercent = 80.0f;

// Clamped to 0..100; 0 for NaN.
float clampVolumePercent(float percent);

// Linear to unity at 80, then 0.3 dB per percent: 80 gives 1.0, 100 about 1.995. percent is clamped to 0..100.
double percentToGain(double percent);

// The simulator's COM volume 0..1 for a knob's percent: 1 from unity up.
double simulatorVolumeOf(float percent);
// The knob's percent for the simulator's COM volume; 0 for one that is unknown (-1).
float percentOfSimulatorVolume(float volume);

// The new receive_volume once the simulator has taken over a knob's percent: the simulator now applies any attenuation,
// only a boost above unity is left to us.
float boostPercentOf(float percent);

// How loud received voices are, as a linear factor: the aircraft's COM volume or the user's own. selectedVolume is the
// followed radio's volume 0..1, anything else unknown. 1.0 while master is off.
float receiveGainOf(const Settings& settings, float selectedVolume);
