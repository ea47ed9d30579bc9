// text_messages_win.h - the host's text messages, handed to the rooms that deal with them.
#pragma once
#include "messages/message_intake.h"
#include "plugin/plugin_state.h"

// [host] A text message arrived. Before init and after shutdown it is only kept: no window is there to open, and the
// host is not called.
void receiveTextMessage(PluginState& plugin, const HostText& message);

// [any] What a message sets off, without one: the chime and the window, as the settings say.
void playTextAlert(PluginState& plugin);
