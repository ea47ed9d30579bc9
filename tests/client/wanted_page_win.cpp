#include "tests/client/wanted_page_win.h"
#include <cmath>
#include "settings/language.h"
#include "settings/settings.h"
#include "tests/client/picture_compare.h"
#include "tests/client/window_picture_win.h"
#include "tests/unit/fakes.h"

namespace {

constexpr double kClockStepS = 0.05;  // the message's tick and the wall clock do not advance in step

std::int64_t secondsOf(const SYSTEMTIME& time) {
    FILETIME file = {};
    SystemTimeToFileTime(&time, &file);
    return static_cast<std::int64_t>(std::uint64_t{file.dwHighDateTime} << 32U | file.dwLowDateTime) / 10'000'000;
}

// In the system's zone, found differently than in the plugin: from the present difference of the two clocks.
TimeOfDay wallClock(double unixSeconds) {
    constexpr std::int64_t kQuarterHour = 900;  // all zones' offsets are multiples of this
    SYSTEMTIME universal = {}, local = {};
    GetSystemTime(&universal);
    GetLocalTime(&local);
    const double distance = static_cast<double>(secondsOf(local) - secondsOf(universal)) / kQuarterHour;
    const auto second = static_cast<std::int64_t>(unixSeconds) + std::llround(distance) * kQuarterHour;
    return {static_cast<int>(second / 3600 % 24), static_cast<int>(second / 60 % 60), static_cast<int>(second % 60)};
}

PixelRect pixelsOf(const UnitRect& rect, float scale) {
    const RECT area = pagePixels(rect, scale);
    return {area.left, area.top, area.right, area.bottom};
}

}  // namespace

void WantedPages::add(const std::string& sender, const std::string& text, std::uint32_t target, double from,
                      double to) {
    messages_.push_back({sender, text, target, from, to});
    if (messages_.size() > kMaxMessages) messages_.erase(messages_.begin());
}

::testing::AssertionResult WantedPages::isShownBy(HWND window, const WantedPage& wanted) {
    const auto count = static_cast<std::int32_t>(messages_.size());
    if (wanted.page >= count) return isShownBy(window, wanted, 0.0);
    const Delivered& shown = messages_[static_cast<std::size_t>(count - 1 - wanted.page)];
    const double last = std::floor(shown.to + kClockStepS);
    double second = std::floor(shown.from - kClockStepS);
    auto result = isShownBy(window, wanted, second);
    while (!result && second < last) result = isShownBy(window, wanted, ++second);
    return result;
}

::testing::AssertionResult WantedPages::isShownBy(HWND window, const WantedPage& wanted, double receivedAt) {
    const std::uint32_t dpi = GetDpiForWindow(window);
    const float scale = messageScale(dpi);
    ManualClock clock;
    clock.seconds = receivedAt;
    MessageStore store;
    for (const Delivered& message : messages_)
        addMessage(store, message.sender, message.text, message.target, 0, clock.tickMs());
    ArgbImage shown = coloursOf(askForPicture(window));
    MemorySurface surface;
    if (!surface.resize(shown.width, shown.height)) return ::testing::AssertionFailure() << "no picture";
    TextMeasurer measurer(painter_, surface, scale);
    const auto measure = [&](const PageTextStyle& style, std::u16string_view text) {
        return measurer.measure(style, text);
    };
    MessagePage page;
    page.change_page(store, wanted.page);
    page.hoverClose(wanted.isCloseHovered);
    page.setKeyboard(wanted.hasKeyboard);
    store.unread = wanted.unread;
    const PageLook look = page.look(store, Settings{}.text_scale, kEnglish, dpi);
    painter_.paint(surface, scale, page.items(page.layOut(store, look, {measure, wallClock, clock})));
    GdiFlush();  // before our own code touches the pixels
    ArgbImage painted = coloursOf(surface.view());
    if (const auto cursor = page.cursor(0)) {
        blankPixels(shown, pixelsOf(cursor->rect, scale));
        blankPixels(painted, pixelsOf(cursor->rect, scale));
    }
    return isSamePicture(shown, painted);
}
