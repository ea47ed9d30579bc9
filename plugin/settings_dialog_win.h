// settings_dialog_win.h - where the settings dialog runs, and how it ends with the plugin.
#pragma once
#include "plugin/plugin_state.h"

// [any] Brings an open dialog to the front, or starts one on a thread of its own; returns at once.
void openSettingsDialog(PluginState& plugin);

// [host] Runs the dialog on the calling thread until it is closed; if one is open, only brings that to the front.
void runSettingsDialogHere(PluginState& plugin);

// [host] In a shutdown, after which the slot lets none in until the next start: closes an open dialog and waits for it,
// without limit if it runs on our own thread, at most 1 s on a host's. One that is just opening closes by itself.
void closeSettingsDialog(PluginState& plugin);
