#include "plugin/message_receipt_win.h"
#include "audio/tones.h"
#include "base/code_page_win.h"
#include "base/data_files.h"
#include "plugin/lifecycle_win.h"

namespace {

class MessageWindowOpener final : public NewestMessageOpener {
  public:
    explicit MessageWindowOpener(const MessageWindowLink& link) : link_(link) {}
    void openNewest() override {
        if (!link_.isVisible) requestOfMessageWindow(link_, kShowNewestMessage);
    }

  private:
    const MessageWindowLink& link_;
};

template <class Body>
void withAlertContext(PluginState& plugin, Body body) {
    const std::function<std::string()> alertPath = [&plugin] {
        return utf8FromNarrow(joinPath(copyDataFolder(plugin), kAlertFile));
    };
    MessageWindowOpener window(plugin.messageWindow);
    body(AlertContext{.host = hostWhileRunning(plugin),
                      .settings = plugin.settings,
                      .schid = plugin.currentServer,
                      .alertPath = alertPath,
                      .window = window});
}

}  // namespace

void receiveTextMessage(PluginState& plugin, const HostText& message) {
    if (!plugin.running) return;  // nobody would read it: a start begins with an empty store
    withAlertContext(
        plugin, [&](const AlertContext& context) { takeTextMessage(message, plugin.messages, plugin.clock, context); });
}

void playTextAlert(PluginState& plugin) {
    withAlertContext(plugin, [](const AlertContext& context) { playTextAlert(context); });
}
