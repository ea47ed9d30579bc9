// ui_thread_win.h - the thread of the radio panel and the message window.
#pragma once
#include "plugin/plugin_state.h"

// [ui] Makes both windows and serves them until the shutdown closes the panel. Without memory it returns at once: the
// radio works on without its windows.
void runUiThread(PluginState& plugin) noexcept;
