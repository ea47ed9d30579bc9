// menu_win.h - the plugin's entries in the host's menu.
#pragma once
#include "plugin/plugin_state.h"

// The host's record, released by it through ts3plugin_freeMemory.
struct PluginMenuItem {
    int type;  // 0 global menu
    int id;    // MenuEntry
    char text[128];
    char icon[128];
};
static_assert(sizeof(PluginMenuItem) == 264);

// [host] The three records in id order and a null, all from malloc; null if out of memory. May be called before init:
// the settings then have their defaults and the texts are in the system's language.
PluginMenuItem** buildMenu(PluginState& plugin);

// [host] The user chose an entry. Before init nothing happens.
void chooseMenuEntry(PluginState& plugin, int menuItemId);
