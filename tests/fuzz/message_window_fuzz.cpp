// message_window_fuzz.cpp - text messages of any bytes on their way from the host into the window, which is operated
// meanwhile on a system whose fonts measure anything: nothing, minus one, infinity, no number, more than can be.
// Whatever is to be painted lies inside the window, is text, and is little.
#include <cmath>
#include <limits>
#include "base/display_text.h"
#include "messages/message_intake.h"
#include "messages/message_model.h"
#include "plugin/host_table.h"
#include "tests/client/host_model.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/unit/fakes.h"

namespace {

constexpr int kMostActs = 60;
constexpr int kMostMeasured = 3000;  // for one page; the longest message has a few hundred words

// What a font says of a width.
enum class Font { kSensible, kNothing, kMinusOne, kInfinity, kNoNumber, kHuge, kShrinking, kRandom, kCount };

class HostileScreen final : public MessageScreen {
  public:
    explicit HostileScreen(std::uint32_t seed) : random_(seed) {}

    void place() override {}
    void appear() override {}
    void vanish() override {}
    void dragFrom(PixelPoint) override {}
    std::int32_t clientWidth() const override { return width; }
    std::uint32_t screenDpi() const override { return dpi; }
    MeasureStyledText preparePicture() override {
        if (!hasRoom) return nullptr;
        measured = 0;
        return [this](const PageTextStyle& style, std::u16string_view text) {
            measuredBy = font;
            require(++measured < kMostMeasured, "a page is laid out in good time");
            require(style.size > 0.0f && style.size <= 22.0f, "a font has a size");
            return widthOf(style, text);
        };
    }
    void paint(const std::vector<PageItem>& items) override {
        require(items.size() < 64, "a page has few parts");
        for (const PageItem& item : items) check(item);
    }
    void invalidate() override {}
    void invalidate(const UnitRect&) override {}
    void update() override {}

    Font font = Font::kSensible;
    bool hasRoom = true;
    std::uint32_t dpi = 96;
    std::int32_t width = 620;
    int measured = 0;
    Font measuredBy = Font::kSensible;  // the page that is shown: a new font alone lays nothing out

  private:
    float widthOf(const PageTextStyle& style, std::u16string_view text) {
        const auto length = static_cast<float>(text.size());
        switch (font) {
            case Font::kNothing:
                return 0.0f;
            case Font::kMinusOne:
                return -1.0f;
            case Font::kInfinity:
                return std::numeric_limits<float>::infinity();
            case Font::kNoNumber:
                return std::numeric_limits<float>::quiet_NaN();
            case Font::kHuge:
                return 1e30f * length;
            case Font::kShrinking:
                return 10'000.0f - length;
            case Font::kRandom:
                return static_cast<float>((random_ = random_ * 1664525U + 1013904223U) >> 20U);
            default:
                return length * style.size / 2.0f;
        }
    }
    static void check(const PageItem& item) {
        const UnitRect& rect = item.rect;
        require(rect.x >= 0 && rect.y >= 0 && rect.width >= 0 && rect.height >= 0, "a part lies inside the window");
        require(rect.x + rect.width <= 620 && rect.y + rect.height <= 400, "a part lies inside the window");
        require(item.text.size() <= 20'000, "a line is no longer than its message");
        for (std::size_t i = 0; i < item.text.size(); i++) {
            const char16_t unit = item.text[i];
            require(!isControl(unit) && !isDirectionControl(unit), "what is painted is text");
            require(unit < 0xDC00 || unit > 0xDFFF, "the second half of a pair is not alone");
            if (unit < 0xD800 || unit > 0xDBFF) continue;
            i++;
            require(i < item.text.size() && item.text[i] >= 0xDC00 && item.text[i] <= 0xDFFF, "nor is the first");
        }
    }

    std::uint32_t random_;
};

class World final : public NewestMessageOpener {
  public:
    explicit World(FuzzInput input) : input_(input) { host_.addServer(1, 5, 10); }

    void run() {
        for (int i = 0; i < kMostActs && !input_.isEmpty(); i++) {
            act();
            clock_.advance(33);
            model_.refresh();
            checkCursor();
        }
        for (const auto& line : host_.logLines())
            for (const char c : line) require(c < 0 || c >= 0x20, "a line for the log is one line", line);
        require(host_.problems().empty(), "no rule of the host is broken");
    }
    void openNewest() override { model_.showNewest(); }

  private:
    std::string text() {
        std::string text(input_.text());
        if (input_.below(16) == 0) {  // as long as the host can make it
            const auto part = text;
            while (!part.empty() && text.size() < 8192) text += part;
        }
        return text;
    }
    void arrive() {
        const auto sender = text(), message = text();
        const HostText host{input_.below(16) == 0 ? nullptr : sender.c_str(),
                            input_.below(32) == 0 ? nullptr : message.c_str(),
                            static_cast<std::uint16_t>(input_.below(5)), input_.byte()};
        takeTextMessage(host, store_, clock_, {functions_, settings_, 1, alertPath_, *this});
    }
    PixelPoint point() {
        return {static_cast<std::int32_t>(input_.byte()) * 4, static_cast<std::int32_t>(input_.byte()) * 2};
    }
    void act() {
        constexpr MessageKey kKeys[] = {MessageKey::kEscape, MessageKey::kUp,       MessageKey::kPageUp,
                                        MessageKey::kDown,   MessageKey::kPageDown, MessageKey::kDelete,
                                        MessageKey::kOther};
        constexpr std::uint32_t kDpis[] = {0, 1, 96, 120, 144, 192, 960};
        switch (input_.below(12)) {
            case 0:
                model_.pressKey(kKeys[input_.below(7)]);
                break;
            case 1:
                model_.turnWheel(static_cast<int>(input_.number()));
                break;
            case 2:
                model_.movePointer(point());
                break;
            case 3:
                model_.pressAt(point());
                break;
            case 4:
                if (input_.flag())
                    model_.toggle();
                else
                    model_.showMessage(input_.byte());  // of now, of before, of never
                break;
            case 5:
                screen_.font = static_cast<Font>(input_.below(static_cast<std::uint32_t>(Font::kCount)));
                break;
            case 6:
                screen_.dpi = kDpis[input_.below(7)];
                screen_.hasRoom = input_.below(4) != 0;
                model_.leavePointer();
                model_.setKeyboard(screen_.hasRoom);
                break;
            case 7:
                language_ = static_cast<std::int32_t>(input_.below(9));
                break;
            case 8:
                updateSettings(settings_, [&](Settings& live) {
                    live.text_scale = static_cast<float>(input_.anyDouble());
                    live.text_auto_open = input_.flag();
                    live.text_alert = input_.flag();
                });
                break;
            case 9:
                clock_.advance(input_.number());
                break;
            default:
                arrive();
        }
    }
    void checkCursor() const {
        const auto& cursor = model_.cursor();
        if (!cursor || screen_.measuredBy != Font::kSensible) return;
        const UnitRect& rect = cursor->rect;
        require(rect.x >= 20 && rect.x + rect.width <= 600 && rect.y >= 72 && rect.y + rect.height <= 360,
                "the cursor stands on the page");
    }

    FuzzInput input_;
    ManualClock clock_;
    MemoryFiles files_;
    SettingsStore settings_{files_};
    MessageStore store_;
    HostModel host_{clock_};
    HostFunctions functions_ = resolveHostFunctions(host_.table());
    const std::function<std::string()> alertPath_ = [] { return std::string("C:/Data/text_alert.wav"); };
    std::atomic<std::int32_t> language_{0};
    std::atomic<bool> isVisible_{false};
    HostileScreen screen_{input_.number()};
    MessageModel model_{{clock_, settings_, store_, language_, isVisible_, [](double) { return TimeOfDay{}; }},
                        screen_};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    World(FuzzInput(data, size)).run();
    return 0;
}
