// message_scenes_win.cpp - the message window's scenes, each from the messages it is to hold.
#include "tests/client/message_driver_win.h"
#include "tests/client/pictures/scenes_win.h"

namespace {

constexpr int kOpenByMenu = 3;

constexpr const char* kClearance =
    "PDC 2026-09-28 EDDF\nCLR TO KJFK VIA SOBRA L980 XAMAB\nINITIAL CLB 5000FT\nSQUAWK 4312\nDEP RWY 25C\n"
    "WHEN READY CONTACT 121.905";
constexpr const char* kTaxi = "Taxi to holding point K via N7 and L, hold short of runway 25C.";
constexpr const char* kChinese =
    "放行许可：允许经由 ELKUR W40 YQO "
    "飞往上海浦东，起始高度三千米，应答机四三一二，使用三六左跑道起飞，准备好后联系121.600。"
    "请复诵，并确认已收到最新通播信息，注意跑道附近有鸟群活动。";

void deliver(Stage& stage, const std::string& text, const std::string& sender = "EDDF_DEL", std::uint16_t mode = 2) {
    HostTextMessage message;
    message.fromName = sender;
    message.targetMode = mode;
    message.message = text;
    stage.session.plugin.deliver(message);
}

void open(Stage& stage) {
    stage.session.plugin.exports().onMenuItemEvent(kSchid, 0, kOpenByMenu, 0);
    stage.session.waitUntil([] { return isMessageWindowShown(); });
}

void showClearance(Stage& stage) {
    deliver(stage, kClearance, "EDDF_DEL", 1);
    open(stage);
}

void showTaxi(Stage& stage) {
    deliver(stage, kTaxi, "Frankfurt Ground", 1);
    open(stage);
}

void showLong(Stage& stage) {
    std::string text;
    for (int i = 1; i <= 40; i++) text += "Remark " + std::to_string(i) + ": the quick brown fox jumps over it. ";
    deliver(stage, text);
    open(stage);
}

void showOneWord(Stage& stage) {
    deliver(stage, "https://" + std::string(300, 'x'), std::string(200, 'W'), 3);
    open(stage);
}

void showChinese(Stage& stage) {
    deliver(stage, kChinese, "北京放行", 1);
    open(stage);
}

// A clearance from senders with names longer than their place, in a window that has the keyboard.
void showLongNames(Stage& stage) {
    for (int i = 1; i <= 9; i++) deliver(stage, kTaxi);
    deliver(stage, kClearance, "Санкт-Петербург-Подход, старший диспетчер смены", 2);
    open(stage);
    SendMessageW(findMessageWindow(), WM_SETFOCUS, 0, 0);
    deliver(stage, kClearance, "北京首都国际机场放行许可席位管制员值班主任北京首都国际机场", 2);
    stage.session.waitPasses(3);
}

// More messages arrive while one is being read.
void showUnread(Stage& stage) {
    for (int i = 1; i <= 37; i++) deliver(stage, "Message number " + std::to_string(i));
    open(stage);
    for (int i = 1; i <= 4; i++) pressMessageKey(VK_UP);
    stage.session.waitPasses(3);
    for (int i = 38; i <= 40; i++) deliver(stage, "Message number " + std::to_string(i) + ", REQUEST");
}

void hoverClose(Stage& stage) {
    showTaxi(stage);
    moveOverMessageWindow(596, 24);
}

// Text that must not harm the picture: marks, both directions, emoji, controls, damaged bytes.
void showHostile(Stage& stage) {
    deliver(stage,
            "Shalom \u05E9\u05DC\u05D5\u05DD, \u202Ereversed\u202C? \U0001F6EC landed \x01\x02\x1B[31m red, "
            "broken \xC3\x28 \xFF bytes, Z\u0338\u035Balgo, \u2601 cloud\r\ntab\tbed",
            "E\u202Evil \U0001F608\nline", 3);
    open(stage);
}

constexpr const char* kNoAutoOpen = "text_auto_open=0\r\n";
constexpr const char* kLarge = "text_auto_open=0\r\ntext_scale=22\r\n";
constexpr const char* kInChinese = "text_auto_open=0\r\nlanguage=zh-CN\r\n";
constexpr const char* kInRussian = "text_auto_open=0\r\nlanguage=ru\r\n";
constexpr const char* kInGerman = "text_auto_open=0\r\nlanguage=de\r\n";

// clang-format off
constexpr Scene kMessageScenes[] = {
    // name          settings     aircraft  act            window             moment              150 %
    {"empty",        kNoAutoOpen, nullptr,  open,          findMessageWindow, Moment::kStill,     true},
    {"clearance",    kNoAutoOpen, nullptr,  showClearance, findMessageWindow, Moment::kBrightest, true},
    {"taxi",         kNoAutoOpen, nullptr,  showTaxi,      findMessageWindow, Moment::kBrightest, false},
    {"long",         kNoAutoOpen, nullptr,  showLong,      findMessageWindow, Moment::kStill,     true},
    {"one_word",     kNoAutoOpen, nullptr,  showOneWord,   findMessageWindow, Moment::kBrightest, false},
    {"large",        kLarge,      nullptr,  showLong,      findMessageWindow, Moment::kStill,     false},
    {"chinese",      kInChinese,  nullptr,  showChinese,   findMessageWindow, Moment::kBrightest, true},
    {"russian",      kInRussian,  nullptr,  showOneWord,   findMessageWindow, Moment::kBrightest, true},
    {"long_names",   kInChinese,  nullptr,  showLongNames, findMessageWindow, Moment::kBrightest, true},
    {"empty_german", kInGerman,   nullptr,  open,          findMessageWindow, Moment::kStill,     false},
    {"german",       kInGerman,   nullptr,  showClearance, findMessageWindow, Moment::kBrightest, false},
    {"unread",       kNoAutoOpen, nullptr,  showUnread,    findMessageWindow, Moment::kBrightest, true},
    {"close",        kNoAutoOpen, nullptr,  hoverClose,    findMessageWindow, Moment::kStill,     false},
    {"hostile",      kNoAutoOpen, nullptr,  showHostile,   findMessageWindow, Moment::kBrightest, false},
};
// clang-format on

}  // namespace

std::span<const Scene> messageScenes() {
    return kMessageScenes;
}
