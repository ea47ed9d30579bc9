// mouse_activation_win.h - asks the system what mouse_activation.h decides by.
#pragma once

// [any] Whether a click on one of our windows takes the keyboard, asked anew with each click (WM_MOUSEACTIVATE): the
// user may have changed the setting.
bool doesClickActivate();
