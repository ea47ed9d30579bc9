// message_inputs_test.cpp - the inputs that fuzzing has found for text messages, laid out with the real fonts and
// painted into a picture: the part of their way that has no fuzz target, since only Windows has its GDI+.
#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include "messages/message_page.h"
#include "messages/message_paint_win.h"
#include "tests/client/picture_compare.h"
#include "tests/unit/fakes.h"

namespace {

constexpr std::uint32_t kBackground = 0x060908;

std::vector<std::string> corpus() {
    std::vector<std::string> inputs;
    for (const auto& entry : std::filesystem::directory_iterator(CORVALIS_MESSAGE_CORPUS)) {
        std::ifstream file(entry.path(), std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return inputs;
}

// A page with one message, painted; its colours.
class MessageInputs : public testing::Test {
  protected:
    ArgbImage painted(const std::string& sender, const std::string& text, float textSize, std::uint32_t dpi) {
        const float scale = messageScale(dpi);
        MessageStore store;
        addMessage(store, sender, text, kChannelMessage, 7, clock.tickMs());
        EXPECT_TRUE(surface.resize(static_cast<int>(kMessageWidth * scale), static_cast<int>(kMessageHeight * scale)));
        TextMeasurer measurer(painter, surface, scale);
        const auto measure = [&](const PageTextStyle& style, std::u16string_view part) {
            return measurer.measure(style, part);
        };
        MessagePage page;
        const PageLook look = page.look(store, textSize, 2, dpi);
        const PageLook shown = page.layOut(store, look, {measure, [](double) { return TimeOfDay{}; }, clock});
        painter.paint(surface, scale, page.items(shown));
        GdiFlush();
        return coloursOf(surface.view());
    }
    // Whether the page is blank beside its text, left and right of it.
    static bool hasBlankMargins(const ArgbImage& shown, float scale) {
        for (auto y = static_cast<int>(70 * scale); y < static_cast<int>(285 * scale); y++) {
            for (const auto& [from, to] : {std::pair{4, 12}, std::pair{610, 616}})
                for (auto x = static_cast<int>(from * scale); x < static_cast<int>(to * scale); x++)
                    if (shown.row(y)[x] != kBackground) return false;
        }
        return true;
    }

    const GdiPlusSession gdiPlus;
    ManualClock clock;
    MessagePainter painter;
    MemorySurface surface;
};

}  // namespace

TEST_F(MessageInputs, ArePaintedOntoThePageAndNowhereElse) {
    const auto inputs = corpus();
    ASSERT_GE(inputs.size(), 50U);
    std::size_t number = 0;
    for (const std::string& input : inputs) {
        const std::uint32_t dpi = number % 2 == 0 ? 96 : 144;
        const auto shown = painted(input, input, number % 3 == 0 ? 22.0f : 15.0f, dpi);
        EXPECT_TRUE(hasBlankMargins(shown, messageScale(dpi))) << "input " << number << ": " << input.substr(0, 60);
        number++;
    }
}
