#include "messages/message_model.h"

namespace {

// Messages that come at the same time as a preview was asked for do not take the page from it. Later ones do: a
// clearance must not wait behind a forgotten sample.
constexpr std::uint64_t kHoldMs = 5000;

// Messages counted as unread beyond that many are read.
void limitUnread(std::atomic<std::int32_t>& unread, std::int32_t most) {
    std::int32_t before = unread;
    while (before > most && !unread.compare_exchange_weak(before, most)) {
    }
}

}  // namespace

void MessageModel::show() {
    showWithUnread(0);
}

void MessageModel::showMessage(std::uint32_t number) {
    const auto wanted = copyNumbered(context_.store, number);
    page_.hold(number);
    heldUntilMs_ = context_.clock.tickMs() + kHoldMs;
    drawn_.reset();  // the look does not tell which message it is
    showWithUnread(wanted ? wanted->page : 0);
}

void MessageModel::showWithUnread(std::int32_t most) {
    screen_.place();
    limitUnread(context_.store.unread, most);
    context_.isVisible = true;
    try {
        refresh();  // before it is seen
    } catch (...) {
        // Without memory for its picture the window appears all the same; the next tick tries again.
    }
    screen_.appear();
}

void MessageModel::showNewest() {
    if (context_.isVisible) return;
    page_.rewind();
    show();
}

void MessageModel::toggle() {
    if (context_.isVisible)
        hide();
    else
        show();
}

void MessageModel::hide() {
    context_.isVisible = false;  // first: a message that finds the window gone must be able to reopen it
    page_.release();
    screen_.vanish();
}

void MessageModel::refresh() {
    if (!context_.isVisible) return;
    if (isDue(heldUntilMs_, context_.clock.tickMs())) page_.release();
    if (drawn_ != currentLook()) drawPage();
    blinkCursor();
    screen_.update();  // a key's effect is seen at once, even while more keys wait
}

void MessageModel::pressKey(MessageKey key) {
    switch (key) {
        case MessageKey::kEscape:
            return hide();
        case MessageKey::kUp:
        case MessageKey::kPageUp:
            return change_page(1);
        case MessageKey::kDown:
        case MessageKey::kPageDown:
            return change_page(-1);
        case MessageKey::kDelete:
            page_.clear(context_.store);
            return refresh();
        case MessageKey::kOther:
            return;
    }
}

void MessageModel::turnWheel(int delta) {
    change_page(delta < 1 ? -1 : 1);
}

void MessageModel::movePointer(PixelPoint at) {
    page_.hoverClose(isOnCloseButton(at, screen_.clientWidth(), screen_.screenDpi()));
    refresh();
}

void MessageModel::leavePointer() {
    page_.hoverClose(false);
    refresh();
}

void MessageModel::pressAt(PixelPoint at) {
    if (isOnCloseButton(at, screen_.clientWidth(), screen_.screenDpi()))
        hide();
    else if (isOnHeader(at, screen_.screenDpi()))
        screen_.dragFrom(at);
}

void MessageModel::setKeyboard(bool isHere) {
    page_.setKeyboard(isHere);
    refresh();
}

void MessageModel::change_page(std::int32_t delta) {
    page_.change_page(context_.store, delta);
    refresh();
}

void MessageModel::drawPage() {
    const PageLook wanted = currentLook();
    drawn_.reset();  // what fails is tried again at the next tick
    const MeasureStyledText measure = screen_.preparePicture();
    if (!measure) return;
    // Shows what was laid out, not what was wanted: a message that arrives in between is drawn at the next tick.
    const PageLook shown = page_.layOut(context_.store, wanted, {measure, context_.localTime, context_.clock});
    screen_.paint(page_.items(shown));
    drawn_ = shown;
    screen_.invalidate();
}

// Where the cursor was and where it is are painted; the picture below stays.
void MessageModel::blinkCursor() {
    const std::optional<PageItem> cursor = page_.cursor(context_.clock.tickMs());
    if (cursor == cursor_) return;
    for (const auto& changed : {cursor_, cursor}) {
        if (changed) screen_.invalidate(changed->rect);
    }
    cursor_ = cursor;
}

PageLook MessageModel::currentLook() const {
    return page_.look(context_.store, copySettings(context_.settings).text_scale, context_.languageIndex,
                      screen_.screenDpi());
}
