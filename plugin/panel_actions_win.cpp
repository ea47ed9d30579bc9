#include "plugin/panel_actions_win.h"
#include "plugin/menu_texts.h"
#include "plugin/menu_win.h"
#include "plugin/plugin_state.h"

void PluginPanelActions::openSettings() {
    chooseMenuEntry(plugin_, kMenuSettings);
}

void PluginPanelActions::toggleTextWindow() {
    chooseMenuEntry(plugin_, kMenuTextMessages);
}
