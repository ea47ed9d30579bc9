#include "tests/client/panel_test.h"

namespace {

constexpr LONG kCreatedHeight = 350;          // until the first presentation gives the window its theme's size
constexpr std::uint64_t kLongestMs = 30'000;  // of anything, on a machine with much else to do

}  // namespace

PanelTest::PanelTest() : awarenessBefore_(useDevicePixels()) {
    SetCursorPos(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);
}

PanelTest::~PanelTest() {
    SetThreadDpiAwarenessContext(awarenessBefore_);
}

::testing::AssertionResult PanelTest::startWith(std::int32_t theme, const std::string& lines) {
    theme_ = theme;
    host.forgetCalls();
    session.telemetry.radios[0] = {.activeKhz = 119000, .standbyKhz = 121500, .spacing = 1};
    session.telemetry.radios[1] = {.activeKhz = 120000, .standbyKhz = 121975, .spacing = 0};
    session.publish();
    session.writeSettings("theme=" + std::to_string(theme) + "\r\n" + lines);
    settingsBefore_ = session.settings();
    const auto started = session.start();
    if (!started) return started;
    if (!session.waitForCalls("getChannelList", 1, kLongestMs)) return ::testing::AssertionFailure() << "not connected";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult PanelTest::show(std::int32_t theme, const std::string& lines) {
    const auto started = startWith(theme, lines);
    if (!started) return started;
    if (session.waitUntil([&] { return isShown(); }, kLongestMs)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "the panel of " << themeName(theme) << " is not visible";
}

LRESULT PanelTest::send(UINT message, WPARAM wParam, LPARAM lParam) const {
    return SendMessageW(findPanel(), message, wParam, lParam);
}

LRESULT PanelTest::sendAt(UINT message, POINT client) const {
    return send(message, 0, MAKELPARAM(client.x, client.y));
}

bool PanelTest::isShown() const {
    const RECT rect = screenRect();
    return findPanel() && IsWindowVisible(findPanel()) && rect.bottom - rect.top != kCreatedHeight;
}

RECT PanelTest::screenRect() const {
    RECT rect = {};
    GetWindowRect(findPanel(), &rect);
    return rect;
}

bool PanelTest::isSaved(const std::string& line) const {
    return ("\r\n" + session.settings()).find("\r\n" + line + "\r\n") != std::string::npos;
}

::testing::AssertionResult PanelTest::becomesSaved(const std::string& line) {
    if (session.waitUntil([&] { return isSaved(line); }, kLongestMs)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << line << " was not saved in:\n" << session.settings();
}

::testing::AssertionResult PanelTest::clickSaves(std::int32_t element, const std::string& line) {
    if (isSaved(line)) return ::testing::AssertionFailure() << line << " stood there before the click";
    panel().click(element);
    return becomesSaved(line);
}

std::string PanelTest::nextTuning(std::int32_t com) {
    const std::string command = commands_.next(kLongestMs);
    if (jsonValue(command, "com") != std::to_string(com)) return "not of this radio: " + command;
    return jsonValue(command, "slot") + " " + jsonValue(command, "target");
}

void PanelTest::answer() {
    commands_.acknowledge(true);
    EXPECT_TRUE(session.waitPasses(3));
}

::testing::AssertionResult PanelTest::nothingHappened() {
    const std::string settings = session.settings();
    panel().wheel(theme_ == kGeneralTheme ? kStandbyMhzDigits : kLargeKnob, WHEEL_DELTA);
    const std::string command = nextTuning();
    answer();
    if (command != "standby 122500") return ::testing::AssertionFailure() << "this happened: " << command;
    if (settings != settingsBefore_) return ::testing::AssertionFailure() << "settings were saved:\n" << settings;
    return ::testing::AssertionSuccess();
}
