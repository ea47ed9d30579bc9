#include "tests/soak/busy_server.h"
#include <string>
#include "base/number_text.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/audio_crew.h"
#include "tests/soak/soak_world.h"
#include "tests/soak/stopwatch_win.h"

namespace {

constexpr std::uint64_t kTextEveryMs = 200;
constexpr int kLongestTalkPauseMs = 100;
constexpr int kLongestDeedPauseMs = 3000;
constexpr int kLongestAbsenceMs = 4000;
constexpr std::uint64_t kLobby = 1000;
constexpr std::uint64_t kStrangeChannel = 1001;  // comes and goes
constexpr std::uint64_t kFirstChannel = 2000;    // + frequency
constexpr std::size_t kLongestTextBytes = 8192;

std::string megahertz(std::size_t number, char point) {
    std::string text = formatFixed(frequencyKHz(number) / 1000.0, 3);
    text[3] = point;
    return text;
}

std::string channelName(std::size_t number) {
    switch (number % 4) {
        case 0:
            return "Tower " + megahertz(number, '.');
        case 1:
            return megahertz(number, ',') + " Ground";
        case 2:
            return "[cspacer]━━ " + megahertz(number, '.') + " ━━";
        default:
            return "Approach " + megahertz(number, '.') + " / Relay 1" + megahertz(number, '.');
    }
}

std::string strangeName(Dice& dice) {
    std::string name(dice.below(3000), '\0');
    for (char& byte : name) byte = static_cast<char>(dice.between(1, 255));
    return name;
}

constexpr const char* kTexts[] = {
    "CLR TO KJFK VIA SOBRA L980 XAMAB\nINITIAL CLB 5000FT\nSQUAWK 4312",
    "Taxi to holding point K via N7 and L, hold short of runway 25C.",
    "放行许可：允许经由 ELKUR W40 YQO 飞往上海浦东，起始高度三千米，应答机四三一二。",
    "滑走路34Lへの進入を許可します。風は三百度、八ノットです。",
    "Разрешаю взлёт, полоса 25С, ветер 240 градусов 6 метров в секунду.",
    "착륙을 허가합니다. 활주로 33R, 바람 310도 7노트.",
    "\xE2\x80\xAEreversed\xE2\x80\xAC \x01\x02\x1B[31m broken \xC3\x28 \xFF bytes \xF0\x9F\x9B\xAC",
    "https://example.org/a_word_that_never_ends_a_word_that_never_ends_a_word_that_never_ends_a_word_that_never_ends",
};

std::string textAtRandom(Dice& dice) {
    std::string text = dice.oneOf(kTexts);
    if (dice.isOneIn(20)) {
        while (text.size() < kLongestTextBytes) text += std::string(" ") + dice.oneOf(kTexts);
    }
    if (dice.isOneIn(20)) text = strangeName(dice);
    return text;
}

}  // namespace

BusyServer::BusyServer(HostModel& host, const PluginLibrary& plugin, PassWatch& passes, std::uint64_t seed)
    : host_(host), plugin_(plugin), passes_(passes), dice_(seed) {
    for (const std::uint64_t schid : kServers) layOut(schid);
    host_.setCurrentServer(kServers[0]);
}

void BusyServer::layOut(std::uint64_t schid) {
    host_.addServer(schid, kPilot, kLobby);
    host_.addChannel(schid, {kLobby, "Lobby"});
    for (std::size_t i = 0; i < kFrequencies; i++) host_.addChannel(schid, {kFirstChannel + i, channelName(i)});
    for (std::uint16_t id = kFirstSpeaker; id < kSpeakersEnd; id++)
        host_.addClient(schid, id, kFirstChannel + id % kFrequencies);
}

void BusyServer::open() {
    nextTextMs_ = nextTalkMs_ = nextDeedMs_ = systemTickMs();
    isOpen_ = true;
    passes_.setOn(true);
    thread_ = std::thread([this] { run(); });
}

void BusyServer::stop() {
    isOpen_ = false;
    if (thread_.joinable()) thread_.join();
}

template <class Call>
void BusyServer::timed(Call call) {
    const std::uint64_t round = calls_.begin(), startNs = nowNs();
    call();
    calls_.add(round, nowNs() - startNs);
}

void BusyServer::run() {
    while (isOpen_) {
        const std::uint64_t nowMs = systemTickMs();
        deliverEvents();
        reconnectThoseDue();
        if (nowMs >= nextTextMs_) {
            nextTextMs_ += kTextEveryMs;
            sendText();
        }
        if (nowMs >= nextTalkMs_) {
            nextTalkMs_ = nowMs + static_cast<std::uint64_t>(dice_.between(1, kLongestTalkPauseMs));
            talk();
        }
        if (nowMs >= nextDeedMs_) {
            nextDeedMs_ = nowMs + static_cast<std::uint64_t>(dice_.between(1, kLongestDeedPauseMs));
            happen();
        }
        pauseBriefly();
    }
}

void BusyServer::deliverEvents() {
    for (const HostEvent& event : host_.advance(systemTickMs())) timed([&] { plugin_.deliver(event); });
}

void BusyServer::talk() {
    talks_++;
    const std::uint64_t schid = dice_.oneOf(kServers);
    if (dice_.isOneIn(8)) return host_.setOwnTalkingFlag(kServers[front_], isFrontConnected() && dice_.isOneIn(2));
    host_.setTalking(schid, static_cast<std::uint16_t>(dice_.between(kFirstSpeaker, kSpeakersEnd - 1)),
                     dice_.isOneIn(2));
}

void BusyServer::sendText() {
    texts_++;
    HostTextMessage message;
    message.schid = dice_.oneOf(kServers);
    message.targetMode = static_cast<std::uint16_t>(dice_.between(0, 4));
    message.fromClientId = dice_.isOneIn(20) ? kPilot : static_cast<std::uint16_t>(dice_.between(1, kSpeakersEnd));
    if (dice_.isOneIn(10)) message.fromName = strangeName(dice_);
    message.message = textAtRandom(dice_);
    timed([&] { plugin_.deliver(message); });
}

void BusyServer::happen() {
    const auto someone = static_cast<std::uint16_t>(dice_.between(kFirstSpeaker, kSpeakersEnd - 1));
    const std::uint64_t schid = dice_.oneOf(kServers);
    switch (dice_.below(8)) {
        case 0:
        case 1:
            return switchTab();
        case 2:
            return disconnect();
        case 3:
            if (isFrontConnected()) host_.moveByHand(kServers[front_], kPilot, channelAtRandom());
            return;
        case 4:  // leaves; one who has left and is moved would not be there, so that everybody comes back at once
            host_.moveByHand(schid, someone, 0);
            deliverEvents();
            if (tabs_[schid - kServers[0]].isConnected) host_.addClient(schid, someone, channelAtRandom());
            return;
        case 5:
            return changeRule();
        case 6:
            return timed([&] { plugin_.takeMenus(); });
        default:
            return changeChannels();
    }
}

std::uint64_t BusyServer::channelAtRandom() {
    return kFirstChannel + dice_.below(kFrequencies);
}

void BusyServer::switchTab() {
    tabSwitches_++;
    front_ = dice_.below(tabs_.size());
    if (!isFrontConnected()) {
        host_.setCurrentServer(0);
        passes_.setOn(false);
        return timed([&] { plugin_.exports().currentServerConnectionChanged(0); });
    }
    host_.setCurrentServer(kServers[front_]);
    timed([&] { plugin_.exports().currentServerConnectionChanged(kServers[front_]); });
    passes_.setOn(true);
}

void BusyServer::disconnect() {
    const std::size_t which = dice_.below(tabs_.size());
    if (!tabs_[which].isConnected) return;
    tabs_[which] = {false, systemTickMs() + static_cast<std::uint64_t>(dice_.between(100, kLongestAbsenceMs))};
    if (which == front_) passes_.setOn(false);
    host_.removeServer(kServers[which]);
    constexpr unsigned kConnectionLost = 1797;
    timed([&] { plugin_.exports().onConnectStatusChangeEvent(kServers[which], 0, kConnectionLost); });
}

void BusyServer::reconnectThoseDue() {
    for (std::size_t i = 0; i < tabs_.size(); i++) {
        if (tabs_[i].isConnected || systemTickMs() < tabs_[i].reconnectMs) continue;
        tabs_[i].isConnected = true;
        reconnects_++;
        layOut(kServers[i]);
        if (i == front_) host_.setCurrentServer(kServers[i]);
        for (int status = 1; status <= 4; status++)
            timed([&] { plugin_.exports().onConnectStatusChangeEvent(kServers[i], status, 0); });
        if (i == front_) passes_.setOn(true);
    }
}

void BusyServer::changeChannels() {
    if (!isFrontConnected()) return;
    host_.removeChannel(kServers[front_], kStrangeChannel);
    HostChannel channel{kStrangeChannel, std::nullopt};
    if (!dice_.isOneIn(4)) channel.name = strangeName(dice_);
    host_.addChannel(kServers[front_], channel);
}

void BusyServer::changeRule() {
    MoveRule rule;
    rule.answer = static_cast<MoveAnswer>(dice_.below(4));
    if (dice_.isOneIn(2)) rule.answer = MoveAnswer::kConfirm;
    rule.delayMs = static_cast<std::uint32_t>(dice_.between(0, 800));
    host_.setMoveRule(rule);
}
