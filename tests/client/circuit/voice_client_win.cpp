#include "tests/client/circuit/voice_client_win.h"
#include <windows.h>
#include <cstdio>
#include <cstdlib>
#include "base/clock_win.h"
#include "panel/panel_requests.h"
#include "tests/client/circuit/flight_plan.h"
#include "tests/client/plugin_library_win.h"
#include "tests/client/test_machine_win.h"

namespace {

void say(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

// What has arrived on standard input, without waiting. False at its end.
bool readInput(std::string& text) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD waiting = 0;
    if (!PeekNamedPipe(input, nullptr, 0, nullptr, &waiting, nullptr)) return false;
    char bytes[256];
    DWORD count = 0;
    if (waiting > 0 && ReadFile(input, bytes, sizeof bytes, &count, nullptr)) text.append(bytes, count);
    return true;
}

class VoiceClient {
  public:
    VoiceClient() : host_(clock_) { layOutServer(host_); }

    void load() {
        if (plugin_.isLoaded() || !plugin_.load(productFile("corvalis_win64.dll"))) return;
        if (!plugin_.introduce(host_)) return say(plugin_.error());
        plugin_.exports().registerPluginID("circuit");
        plugin_.exports().init();
        say("loaded");
    }
    void unload() {
        if (!plugin_.isLoaded()) return;
        plugin_.exports().shutdown();
        plugin_.unload();
        say("unloaded");
    }
    void obey(const std::string& line) {
        if (line == "load") load();
        if (line == "unload") unload();
        if (line == "swap")
            PostMessageW(static_cast<HWND>(findOwnWindow(L"CorvalisRadioPanel")), kPanelSwapMessage, 1, 0);
    }
    void pump() {
        for (const HostEvent& event : host_.advance(systemTickMs())) {
            if (event.kind == HostEventKind::kClientMove && event.clientId == kPilotClient)
                say("in " + std::to_string(event.newChannelId));
            if (plugin_.isLoaded()) plugin_.deliver(event);
        }
    }
    bool isClean() const {
        for (const auto& problem : host_.problems()) say("rule of the host broken: " + problem);
        return host_.problems().empty();
    }

  private:
    SystemClock clock_;
    HostModel host_;
    PluginLibrary plugin_;
};

}  // namespace

int runVoiceClient() {
    VoiceClient client;
    client.load();
    std::string input;
    while (readInput(input)) {
        for (auto end = input.find('\n'); end != std::string::npos; end = input.find('\n')) {
            client.obey(input.substr(0, end));
            input.erase(0, end + 1);
        }
        client.pump();
        pauseBriefly();
    }
    client.unload();
    return client.isClean() ? 0 : 1;
}

std::uint64_t channelIn(const std::vector<std::string>& lines) {
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        if (line->starts_with("in ")) return std::strtoull(line->c_str() + 3, nullptr, 10);
    }
    return 0;
}
