// message_driver_win.h - a pilot's hand on the real message window: keys, the wheel and clicks as sent messages, which
// are carried out when the function returns. Neither the real cursor nor the focus matters. [host] Used from the main
// thread of a test, the pictures or a benchmark.
#pragma once
#include <windows.h>

// The message window of this process, null while there is none.
HWND findMessageWindow();
bool isMessageWindowShown();
// In screen pixels; empty while there is none.
RECT messageWindowRect();

// x and y in design pixels of the 620 x 400 window. A click on the header would only return after the window had been
// dragged.
void pressMessageKey(WPARAM key);
void clickMessageWindow(double x, double y);
void moveOverMessageWindow(double x, double y);
void turnMessageWheel(int delta);  // 120 per notch, away from the user positive
