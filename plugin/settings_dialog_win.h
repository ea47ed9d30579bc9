// settings_dialog_win.h - where the settings dialog runs, and how it ends with the plugin.
#pragma once
#include "plugin/plugin_state.h"

// [any] Brings an open dialog to the front, or starts one on a thread of its own; returns at once.
void openSettingsDialog(PluginState& plugin);

// [host] Runs the dialog on the calling thread until it is closed; only brings an open one to the front.
void runSettingsDialogHere(PluginState& plugin);

// [host] Closes an open dialog and waits for it: as long as it takes for our own thread's, at most 3 s for one that
// runs on a thread of the host's. One that is just opening closes by itself.
void closeSettingsDialog(PluginState& plugin);
