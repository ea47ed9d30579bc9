#include "messages/message_model.h"

void MessageModel::show() {
    screen_.place();
    context_.store.unread = 0;
    context_.isVisible = true;
    refresh();  // before it is seen
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
    screen_.vanish();
}

void MessageModel::refresh() {
    if (!context_.isVisible) return;
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
