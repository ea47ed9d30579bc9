// message_receipt_win.h - the host's text messages on their way to the store, and what they set off.
#pragma once
#include "messages/message_intake.h"
#include "plugin/plugin_state.h"

// [host] A text message arrived. Before init and after shutdown it is dropped: nobody would read it.
void receiveTextMessage(PluginState& plugin, const HostText& message);

// [any] What a message sets off, without a message: the chime and the window, as the settings say.
void playTextAlert(PluginState& plugin);
