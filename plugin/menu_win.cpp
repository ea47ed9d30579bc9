#include "plugin/menu_win.h"
#include <cstdlib>
#include <cstring>
#include "base/log_line.h"
#include "base/utf8.h"
#include "plugin/menu_texts.h"
#include "plugin/settings_dialog_win.h"
#include "settings/language.h"

namespace {

PluginMenuItem* newItem(std::int32_t entry, std::int32_t language) {
    auto* item = static_cast<PluginMenuItem*>(std::calloc(1, sizeof(PluginMenuItem)));
    if (!item) return nullptr;
    item->id = entry;
    const auto text = cutUtf8(menuText(entry, language), sizeof item->text - 1);
    std::memcpy(item->text, text.data(), text.size());
    return item;
}

}  // namespace

PluginMenuItem** buildMenu(PluginState& plugin) {
    const auto language = chooseLanguage(copySettings(plugin.settings).language, GetUserDefaultUILanguage());
    // NOLINTNEXTLINE(bugprone-sizeof-expression): pointers, as many as there are entries and a null
    auto** items = static_cast<PluginMenuItem**>(std::calloc(kMenuEntryCount + 1, sizeof(PluginMenuItem*)));
    if (!items) return nullptr;
    for (int i = 0; i < kMenuEntryCount; i++) items[i] = newItem(i + 1, language);  // a null only ends the list early
    return items;
}

void chooseMenuEntry(PluginState& plugin, int menuItemId) {
    if (!plugin.running) return;
    if (menuItemId == kMenuSettings) openSettingsDialog(plugin);
    if (menuItemId == kMenuShowPanel)
        updateSettings(plugin.settings, [](Settings& live) { live.panel_visible = true; });
    if (menuItemId == kMenuTextMessages) requestOfMessageWindow(plugin.messageWindow, kToggleMessages);
}
