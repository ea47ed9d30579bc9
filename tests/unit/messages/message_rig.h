// message_rig.h - the message window's model with everything around it: a clock set by hand, and a window that notes
// what it is told and can make things happen while it measures.
#pragma once
#include <gtest/gtest.h>
#include <algorithm>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>
#include "base/display_text.h"
#include "messages/message_model.h"
#include "settings/language.h"
#include "tests/unit/fakes.h"
#include "tests/unit/messages/stored_messages.h"

// A character is as wide as half its size, a wide one as its whole size.
class FakeMessageScreen : public MessageScreen {
  public:
    explicit FakeMessageScreen(const std::atomic<bool>& isVisible) : isVisible_(isVisible) {}

    void place() override { note("place"); }
    void appear() override { note("appear"); }
    void vanish() override { note("vanish"); }
    void dragFrom(PixelPoint at) override {
        note("drag");
        draggedFrom = at;
    }
    std::int32_t clientWidth() const override { return static_cast<std::int32_t>(620.0f * messageScale(dotsPerInch)); }
    std::uint32_t screenDpi() const override { return dotsPerInch; }
    MeasureStyledText preparePicture() override {
        step("prepare");
        if (!hasRoom) return nullptr;
        return [this](const PageTextStyle& style, std::u16string_view text) {
            step("measure");
            if (whileMeasuring) whileMeasuring();
            float width = 0.0f;
            for (const char16_t unit : text) width += isWide(unit) ? style.size : style.size / 2;
            return width;
        };
    }
    void paint(const std::vector<PageItem>& items) override {
        note("paint");
        if (!canPaint) throw std::bad_alloc();
        picture = items;
        painted++;
        isShown = false;
    }
    void invalidate() override {
        isAllStale = true;
        step("invalidate");
    }
    void invalidate(const UnitRect& part) override { staleParts.push_back(part); }
    void update() override {
        step("update");
        updates++;
        isShown = isShown || isAllStale;
        isAllStale = false;
    }

    // What was asked for, with "+" while the visible flag is set: "place paint+ appear+".
    std::string takeSteps() { return std::exchange(steps_, ""); }
    int takePainted() { return std::exchange(painted, 0); }
    std::vector<UnitRect> takeStaleParts() { return std::exchange(staleParts, {}); }

    std::uint32_t dotsPerInch = 96;
    bool hasRoom = true;
    bool canPaint = true;
    std::function<void()> whileMeasuring;
    std::function<void(const std::string& step)> onStep;  // each time the model asks for something
    std::vector<PageItem> picture;                        // the last one painted
    PixelPoint draggedFrom;
    std::vector<UnitRect> staleParts;
    bool isAllStale = false;
    bool isShown = false;  // the picture has been painted, invalidated as a whole and updated
    int painted = 0;
    int updates = 0;

  private:
    void note(const char* name) {
        if (!steps_.empty()) steps_ += ' ';
        steps_ += name;
        if (isVisible_) steps_ += '+';
        step(name);
    }
    void step(const char* name) {
        if (onStep) onStep(name);
    }

    const std::atomic<bool>& isVisible_;
    std::string steps_;
};

class MessageRig : public testing::Test {
  protected:
    static constexpr std::uint32_t kAmber = 0xFFFFB84D;
    static constexpr std::uint32_t kDimGreen = 0xFF4E8F69;
    static constexpr std::uint32_t kFaintGreen = 0xFF38674C;
    static constexpr std::uint32_t kBrightGreen = 0xFF86E8AC;
    static constexpr std::uint32_t kRed = 0xFFFF6B6B;
    static constexpr std::uint64_t kTickMs = 33;
    static constexpr PixelPoint kOnClose = {596, 24};
    static constexpr PixelPoint kOnPage = {300, 200};

    void add(const std::string& text, const std::string& sender = "Tower") {
        addMessage(store, sender, text, kChannelMessage, 7, clock.tickMs());
    }
    void addNumbered(int first, int last) {
        for (int i = first; i <= last; i++) add("message " + std::to_string(i));
    }
    // As the window's timer does.
    void tick() {
        clock.advance(kTickMs);
        model.refresh();
    }
    void press(MessageKey key, int times = 1) {
        for (int i = 0; i < times; i++) model.pressKey(key);
    }

    // --- what the picture says ---
    bool shows(const std::u16string& text) const {
        return std::any_of(screen.picture.begin(), screen.picture.end(),
                           [&](const PageItem& item) { return item.kind == PageItemKind::kText && item.text == text; });
    }
    // "2 / 3"; "" on the empty page.
    std::string counter() const { return textAt({490, 366, 60, 20}); }
    std::string firstRow() const { return textAt({20, 72, 580, 22.5f}); }
    std::string sender() const { return textAt({76, 44, 400, 18}); }
    std::string unread() const { return textAt({400, 366, 80, 20}); }
    bool isEmptyPage() const {
        return shows(u"NO MESSAGE") && counter().empty() && firstRow().empty() && sender().empty();
    }
    std::uint32_t dotColour() const {
        for (const PageItem& item : screen.picture)
            if (item.kind == PageItemKind::kDot) return item.colour;
        return 0;
    }
    std::uint32_t closeColour() const {
        for (const PageItem& item : screen.picture)
            if (item.text == u"\u2715") return item.colour;
        return 0;
    }

    ManualClock clock;
    MemoryFiles files;
    SettingsStore settings{files};
    MessageStore store;
    std::atomic<std::int32_t> languageIndex{kEnglish};
    std::atomic<bool> isVisible{false};
    FakeMessageScreen screen{isVisible};
    MessageModel model{{clock, settings, store, languageIndex, isVisible,
                        [](double unixSeconds) {
                            const auto seconds = static_cast<int>(static_cast<std::int64_t>(unixSeconds) % 86400);
                            return TimeOfDay{seconds / 3600, seconds / 60 % 60, seconds % 60};
                        }},
                       screen};

  private:
    std::string textAt(const UnitRect& rect) const {
        for (const PageItem& item : screen.picture) {
            if (item.kind != PageItemKind::kText || item.rect != rect) continue;
            std::string text;
            for (const char16_t unit : item.text) text += static_cast<char>(unit);
            return text;
        }
        return "";
    }
};
