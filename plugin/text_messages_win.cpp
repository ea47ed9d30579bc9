#include "plugin/text_messages_win.h"
#include "audio/tones.h"
#include "base/code_page_win.h"
#include "base/data_files.h"

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
void withAlertRooms(PluginState& plugin, Body body) {
    const std::string alertPath = utf8FromNarrow(joinPath(plugin.dataFolder, kAlertFile));
    MessageWindowOpener window(plugin.messageWindow);
    body(AlertRooms{plugin.host, plugin.settings, plugin.currentServer, alertPath, window});
}

}  // namespace

void receiveTextMessage(PluginState& plugin, const HostText& message) {
    withAlertRooms(plugin,
                   [&](const AlertRooms& rooms) { takeTextMessage(message, plugin.messages, plugin.clock, rooms); });
}

void playTextAlert(PluginState& plugin) {
    withAlertRooms(plugin, [](const AlertRooms& rooms) { playTextAlert(rooms); });
}
