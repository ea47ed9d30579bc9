#include "messages/message_model.h"

void MessageModel::show() {
    screen_.place();
    rooms_.store.unread = 0;
    rooms_.isVisible = true;
    refresh();  // before it is seen
    screen_.appear();
}

void MessageModel::showNewest() {
    if (rooms_.isVisible) return;
    page_.rewind();
    show();
}

void MessageModel::toggle() {
    if (rooms_.isVisible)
        hide();
    else
        show();
}

void MessageModel::hide() {
    rooms_.isVisible = false;  // first: a message that sees the window gone must be able to open it again
    screen_.vanish();
}

void MessageModel::refresh() {
    if (!rooms_.isVisible) return;
    if (drawn_ != currentLook()) drawPage();
    blinkCursor();
    screen_.update();  // a key's effect is seen at once, also while more of them wait
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
            page_.clear(rooms_.store);
            return refresh();
        case MessageKey::kOther:
            return;
    }
}

void MessageModel::turnWheel(int delta) {
    change_page(delta < 1 ? -1 : 1);
}

void MessageModel::movePointer(PagePoint at) {
    page_.hoverClose(isOnCloseButton(at, screen_.clientWidth(), screen_.dpi()));
    refresh();
}

void MessageModel::leavePointer() {
    page_.hoverClose(false);
    refresh();
}

void MessageModel::pressAt(PagePoint at) {
    if (isOnCloseButton(at, screen_.clientWidth(), screen_.dpi()))
        hide();
    else if (isOnHeader(at, screen_.dpi()))
        screen_.dragFrom(at);
}

void MessageModel::change_page(std::int32_t delta) {
    page_.change_page(rooms_.store, delta);
    refresh();
}

void MessageModel::drawPage() {
    const PageLook wanted = currentLook();
    drawn_.reset();  // what fails is tried again at the next tick
    const MeasureStyledText measure = screen_.preparePicture();
    if (!measure) return;
    // Not what is wanted by now: a message may have arrived meanwhile, and is drawn at the next tick.
    const PageLook shown = page_.layOut(rooms_.store, wanted, {measure, rooms_.localTime, rooms_.clock});
    screen_.paint(page_.items(shown));
    drawn_ = shown;
    screen_.invalidate();
}

// Where the cursor was and where it is are painted; the picture below stays.
void MessageModel::blinkCursor() {
    const std::optional<PageItem> cursor = page_.cursor(rooms_.clock.tickMs());
    if (cursor == cursor_) return;
    for (const auto& changed : {cursor_, cursor}) {
        if (changed) screen_.invalidate(changed->rect);
    }
    cursor_ = cursor;
}

PageLook MessageModel::currentLook() const {
    return page_.look(rooms_.store, copySettings(rooms_.settings).text_scale, rooms_.languageIndex, screen_.dpi());
}
