// message_bench_win.cpp - how long a message keeps the host waiting, and how long the message window takes to lay out
// and draw the longest messages the host can deliver (8 KiB), in the fonts it uses; beside them the same lines found by
// measuring token by token, the obvious first version.
//   message_bench [ROUNDS]      5; under Wine: wine build/windows/bin/message_bench.exe
#include <windows.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include "base/clock_win.h"
#include "base/data_files_win.h"
#include "base/display_text.h"
#include "base/number_text.h"
#include "messages/message_intake.h"
#include "messages/message_page.h"
#include "messages/message_paint_win.h"
#include "tests/unit/ui/plain_word_wrap.h"

namespace {

constexpr std::size_t kMessageBytes = 8192;

double nowMs() {
    LARGE_INTEGER count, frequency;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

std::string repeated(const std::string& part) {
    std::string text;
    while (text.size() + part.size() <= kMessageBytes) text += part;
    return text;
}

struct Times {
    double layoutMs = 0.0;
    double paintMs = 0.0;
    double plainMs = 0.0;
    int measured = 0;
    std::size_t lines = 0;
};

Times measureOnce(const std::string& message, std::uint32_t dpi, float textSize, bool isPlainToo) {
    const SystemClock clock;
    MessageStore store;
    addMessage(store, "Tower", message, kChannelMessage, 1, clock.tickMs());
    const float scale = messageScale(dpi);
    MemorySurface surface;
    surface.resize(static_cast<int>(kMessageWidth * scale), static_cast<int>(kMessageHeight * scale));
    static MessagePainter painter;  // its fonts are made once, as the window's are
    TextMeasurer measurer(painter, surface, scale);
    Times times;
    const PageTools tools{[&](const PageTextStyle& style, std::u16string_view text) {
                              times.measured++;
                              return measurer.measure(style, text);
                          },
                          [](double) { return TimeOfDay{}; }, clock};
    MessagePage page;
    const PageLook look = page.look(store, textSize, 2, dpi);
    const double start = nowMs();
    const PageLook shown = page.layOut(store, look, tools);
    const double laidOut = nowMs();
    painter.paint(surface, scale, page.items(shown));
    times.paintMs = nowMs() - laidOut;
    times.layoutMs = laidOut - start;
    times.lines = page.layout().lines.size();
    if (!isPlainToo) return times;
    const MeasureText measure = [&](std::u16string_view text) { return measurer.measure(page.layout().style, text); };
    const double plainStart = nowMs();
    auto plain = plainWrap(page.layout().text, 580.0f, measure);
    times.plainMs = nowMs() - plainStart;
    plain.resize(std::min(plain.size(), page.layout().lines.size()));  // the page stops below its last row
    if (plain != page.layout().lines) std::printf("    NOT THE SAME LINES\n");
    return times;
}

class NoWindow final : public NewestMessageOpener {
  public:
    void openNewest() override {}
};

// What the host waits for: a message of 8 KiB from its event into the full store, without the host's own share.
void measureIntake() {
    constexpr int kMessages = 20'000;
    const SystemClock clock;
    WindowsDataFiles files;
    SettingsStore settings(files);
    HostFunctions host;
    host.logMessage = [](const char*, int, const char*, std::uint64_t) { return 0U; };
    host.playWaveFile = [](std::uint64_t, const char*) { return 0U; };
    MessageStore store;
    NoWindow window;
    const std::function<std::string()> path = [] { return "text_alert.wav"; };
    const std::string text(kMessageBytes, 'x');
    const std::string sender(10'000, 'N');
    double sumUs = 0.0, worstUs = 0.0;
    for (int i = 0; i < kMessages; i++) {
        const double start = nowMs();
        takeTextMessage({sender.c_str(), text.c_str(), kChannelMessage, 1}, store, clock,
                        {host, settings, 1, path, window});
        const double us = 1000.0 * (nowMs() - start);
        sumUs += us;
        worstUs = std::max(worstUs, us);
    }
    std::printf("intake: %s us on average, %s at worst (limit 50)\n", formatFixed(sumUs / kMessages, 1).c_str(),
                formatFixed(worstUs, 0).c_str());
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const GdiPlusSession gdiPlus;
    measureIntake();
    const struct {
        const char* name;
        std::string text;
    } messages[] = {
        {"one word", std::string(kMessageBytes, 'W')},
        {"Chinese", repeated("放行许可")},
        {"spaces", std::string(kMessageBytes, ' ')},
        {"line feeds", std::string(kMessageBytes, '\n')},
        {"sentences", repeated("Cleared to land, wind 250 at 12 knots. ")},
        {"single letters", repeated("a ")},
        {"mixed", repeated("CLR via ELKUR 放行许可 then 飞往上海, QNH 1013, ")},
    };
    std::printf("%-16s %5s %5s  %9s %9s %9s %9s %12s\n", "8 KiB of", "dpi", "size", "lines", "measured", "layout ms",
                "paint ms", "by token ms");
    for (const auto& message : messages) {
        for (const auto& [dpi, size] : {std::pair{96U, 15.0f}, std::pair{144U, 22.0f}}) {
            Times worst;
            for (int round = -1; round < rounds; round++) {  // the first round fills the font caches
                const Times times = measureOnce(message.text, dpi, size, round == 0 && dpi == 96);
                if (round < 0) continue;
                worst.layoutMs = std::max(worst.layoutMs, times.layoutMs);
                worst.paintMs = std::max(worst.paintMs, times.paintMs);
                worst.plainMs = std::max(worst.plainMs, times.plainMs);
                worst.measured = times.measured;
                worst.lines = times.lines;
            }
            std::printf("%-16s %5u %5s  %9d %9d %9s %9s %12s\n", message.name, dpi, formatFixed(size, 0).c_str(),
                        static_cast<int>(worst.lines), worst.measured, formatFixed(worst.layoutMs, 1).c_str(),
                        formatFixed(worst.paintMs, 1).c_str(),
                        worst.plainMs > 0.0 ? formatFixed(worst.plainMs, 1).c_str() : "-");
            std::fflush(stdout);
        }
    }
    return 0;
}
