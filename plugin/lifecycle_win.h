// lifecycle_win.h - the answer to the client that loads us; start-up and shut-down of the plugin, in their fixed
// orders.
#pragma once
#include "plugin/plugin_state.h"

// [host] Finds out which interface version this client wants of us: the first thing it asks. Nothing of the data folder
// is made or changed.
void answerHost(PluginState& plugin);

// [host] Folders, settings, sounds, language, host handles, log line, worker, poll thread, UI thread. What fails is
// logged or skipped; the plugin goes on with less. A start without a shutdown before it replaces the poll thread and
// keeps the UI thread.
void startPlugin(PluginState& plugin);

// [host] UI thread, poll thread, worker, settings dialog, settings not yet saved, plugin id. Always ends; harmless
// without a start.
void stopPlugin(PluginState& plugin);

// [host] The host's functions between init and shutdown, else none of them: the host is not called then, and they may
// be gone.
const HostFunctions& hostWhileRunning(const PluginState& plugin);

// [dialog] Finds the folders and reads the settings unless init has done so: the host may offer the dialog before init.
void loadSettingsOnce(PluginState& plugin);
