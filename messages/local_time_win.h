// local_time_win.h - the wall clock of a moment.
#pragma once
#include <windows.h>
#include "messages/message_page.h"

// [any] In the system's zone, with the daylight-saving rule that holds for the moment.
TimeOfDay localTimeOf(double unixSeconds);
// The same in another zone.
TimeOfDay localTimeIn(const TIME_ZONE_INFORMATION& zone, double unixSeconds);
