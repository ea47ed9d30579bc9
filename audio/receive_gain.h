// receive_gain.h - how loud received voices are: the aircraft's COM volume or the user's own, as a linear factor.
#pragma once
#include "settings/settings.h"

// selectedVolume is the followed radio's volume 0..1, anything else unknown. 1.0 while master is off.
float receiveGainOf(const Settings& settings, float selectedVolume);
