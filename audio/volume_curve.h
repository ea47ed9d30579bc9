// volume_curve.h - the panel's volume in percent as a gain: linear to unity at 80, then 0.3 dB a percent to +6 dB.
#pragma once

// percent is clamped to 0..100; 80 gives 1.0, 100 about 1.995.
double percentToGain(double percent);
