// message_model.h - what the message window does with requests, keys, the mouse and the passing time, and when its
// picture is drawn anew. The window itself only has hands: MessageScreen.
// [ui] One model, on its window's thread. The store's lock is taken for a copy.
#pragma once
#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>
#include "base/clock.h"
#include "messages/message_geometry.h"
#include "messages/message_page.h"
#include "messages/message_store.h"
#include "settings/settings_store.h"

enum class MessageKey { kEscape, kUp, kPageUp, kDown, kPageDown, kDelete, kOther };

// What the model reads and changes beside itself; all of it outlives the model.
struct MessageContext {
    const Clock& clock;
    SettingsStore& settings;  // text_scale
    MessageStore& store;
    const std::atomic<std::int32_t>& languageIndex;
    std::atomic<bool>& isVisible;  // [ui] the model stores, [any] loads
    TimeOfDay (*localTime)(double unixSeconds);
};

// The model's hands: one window and its picture.
class MessageScreen {
  public:
    MessageScreen() = default;
    MessageScreen(const MessageScreen&) = delete;
    MessageScreen& operator=(const MessageScreen&) = delete;
    virtual ~MessageScreen() = default;

    virtual void place() = 0;   // puts the window where it belongs, shown or not
    virtual void appear() = 0;  // on top of all windows, without the keyboard
    virtual void vanish() = 0;
    virtual void dragFrom(PixelPoint at) = 0;  // as if its caption were pressed there; returns when it has been moved
    virtual std::int32_t clientWidth() const = 0;  // pixels
    virtual std::uint32_t screenDpi() const = 0;

    // Gives the picture the window's size; the function returned measures text as the next paint() draws it, until
    // then. Empty if there is no memory for a picture.
    virtual MeasureStyledText preparePicture() = 0;
    virtual void paint(const std::vector<PageItem>& items) = 0;  // covers the picture
    virtual void invalidate() = 0;                               // all that the window shows is now out of date
    virtual void invalidate(const UnitRect& part) = 0;
    virtual void update() = 0;  // what is out of date is repainted now, not when the thread is idle
};

class MessageModel {
  public:
    MessageModel(const MessageContext& context, MessageScreen& screen) : context_(context), screen_(screen) {}

    void show();        // on its current page; all messages count as read
    void showNewest();  // the same on the newest page; does nothing if the window is already visible
    // On the message of that number (MessageStore), and stays there for a moment while newer ones arrive, which stay
    // unread. On the newest page if the message is no longer there.
    void showMessage(std::uint32_t number);
    void toggle();
    void hide();
    // Has the screen show what has changed; does nothing while the window is hidden.
    void refresh();

    void pressKey(MessageKey key);
    void turnWheel(int delta);  // 120 per notch; below 1 turns to newer messages
    void movePointer(PixelPoint at);
    void leavePointer();
    void pressAt(PixelPoint at);
    // Whether a click there is to give the window the keyboard: on the page, whose keys need it.
    bool wantsKeyboard(PixelPoint at) const { return !isOnHeader(at, screen_.screenDpi()); }
    void setKeyboard(bool isHere);  // the window has got or lost it

    // The block that now stands above the picture.
    const std::optional<PageItem>& cursor() const { return cursor_; }

  private:
    void showWithUnread(std::int32_t most);
    void change_page(std::int32_t delta);
    void drawPage();
    void blinkCursor();
    PageLook currentLook() const;

    MessageContext context_;
    MessageScreen& screen_;
    MessagePage page_;
    std::optional<PageLook> drawn_;  // what the picture shows
    std::optional<PageItem> cursor_;
    std::uint64_t heldUntilMs_ = 0;  // tick until which the page stays on the message that was asked for
};
