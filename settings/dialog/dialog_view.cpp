#include "settings/dialog/dialog_view.h"
#include <algorithm>
#include "base/number_text.h"
#include "base/utf8.h"
#include "settings/interface_texts.h"
#include "ui/word_wrap.h"

namespace {

constexpr std::uint64_t kFreshMs = 3000;
constexpr std::uint64_t kRecentlyLostMs = 10'000;

struct Style {
    float size;  // em height, units
    bool isBold;
    TextTone tone;
    TextSide side = TextSide::kLeft;
};

constexpr Style kLabel = {13, false, TextTone::kPlain};
constexpr Style kDescription = {11, false, TextTone::kDim};
constexpr Style kValue = {13, true, TextTone::kAccent, TextSide::kRight};

std::string padded(std::int32_t number) {
    const std::string digits = std::to_string(number);
    return std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
}

// Collects the texts of one layout.
class TextList {
  public:
    TextList(const DialogLayout& layout, const DialogView& view) : layout_(layout), view_(view) {}

    DialogText& add(std::string_view text, const PixelRect& rect, const PixelRect& clip, const Style& style) {
        DialogText item;
        item.text = text;
        item.rect = rect;
        item.clip = intersectRects(rect, clip);
        item.fontPixels = std::max(1, layout_.px(style.size));
        item.isBold = style.isBold;
        item.tone = style.tone;
        item.side = style.side;
        item.language = view_.language;
        texts.push_back(std::move(item));
        return texts.back();
    }
    void addTo(const DialogControl& control, std::string_view text, const PixelRect& rect, const Style& style) {
        add(text, rect, control.isOnPage ? layout_.pageView : layout_.client, style).id = control.id;
    }

    // Inside a control, in units from its edges.
    PixelRect inside(const DialogControl& control, float left, float top, float right, float bottom) const {
        return {control.rect.left + layout_.px(left), control.rect.top + layout_.px(top),
                control.rect.right - layout_.px(right), control.rect.bottom - layout_.px(bottom)};
    }
    // A band of a control, in units from its top.
    PixelRect band(const DialogControl& control, float top, float height) const {
        return {control.rect.left, control.rect.top + layout_.px(top), control.rect.right,
                control.rect.top + layout_.px(top + height)};
    }

    const DialogLayout& layout() const { return layout_; }
    const DialogView& view() const { return view_; }
    std::string_view entry(int number) const { return textOf(view_.language, number); }

    std::vector<DialogText> texts;

  private:
    const DialogLayout& layout_;
    const DialogView& view_;
};

void addToggle(TextList& list, const DialogControl& control, const DialogRow& row) {
    const bool isCompact = control.look == ControlLook::kCompactToggle || row.description == kNoText;
    const float right = 52;  // the switch and the space around it
    if (isCompact) {
        list.addTo(control, list.entry(row.label), list.inside(control, 12, 0, right, 0), kLabel);
        return;
    }
    list.addTo(control, list.entry(row.label), list.inside(control, 12, 8, right, 27), kLabel);
    list.addTo(control, list.entry(row.description), list.inside(control, 12, 28, right, 8), kDescription);
}

void addSlider(TextList& list, const DialogControl& control, const DialogRow& row) {
    list.addTo(control, list.entry(row.label), list.inside(control, 12, 7, 80, 26), kLabel);
    PixelRect value = list.inside(control, 0, 7, 12, 26);
    value.left = value.right - list.layout().px(64);
    list.addTo(control, sliderText(row.range, rowLevel(row, list.view().settings)), value, kValue);
}

void addSegments(TextList& list, const DialogControl& control, const DialogRow& row) {
    for (int option = 0; option < optionCount(row); option++) {
        const bool isChosen = rowNumber(row, list.view().settings) == option;
        list.addTo(control, optionText(row, option, list.view().language), partRect(list.layout(), control, option),
                   {12, true, isChosen ? TextTone::kOnAccent : TextTone::kPlain, TextSide::kMiddle});
    }
}

void addSelector(TextList& list, const DialogControl& control, const DialogRow& row) {
    PixelRect letter = control.rect;
    letter.right = letter.left + list.layout().px(36);
    const DialogView& view = list.view();
    const bool isDimmed = !hasKey(view.settings.theme, row);
    list.addTo(control, row.caption, letter,
               {14, true, isDimmed ? TextTone::kFaint : TextTone::kStrong, TextSide::kMiddle});
    PixelRect value = partRect(list.layout(), control, 0);
    if (isFixedKey(row)) {
        list.addTo(control, list.entry(kTextKeyAFixed), value,
                   {13, false, isDimmed ? TextTone::kFaint : TextTone::kDim, TextSide::kMiddle});
        return;
    }
    value.left = value.right;
    value.right = partRect(list.layout(), control, 1).left;
    const std::int32_t action = rowNumber(row, view.settings);
    const TextTone tone = isDimmed ? TextTone::kFaint : action == 0 ? TextTone::kDim : TextTone::kPlain;
    list.addTo(control, optionText(row, action, view.language), value, {13, false, tone, TextSide::kMiddle});
}

void addLive(TextList& list, const DialogControl& control) {
    const LiveStatus& live = list.view().live;
    const TextTone tone = live.isConnected ? TextTone::kStrong : TextTone::kFaint;
    PixelRect label = list.band(control, 10, 16);
    label.left += list.layout().px(18);  // right of the lamp
    list.addTo(control, list.entry(kTextLive), label, {11, true, TextTone::kDim});
    list.addTo(control, live.frequency, list.band(control, 30, 26), {20, false, tone});
    list.addTo(control, list.entry(live.stateEntry), list.band(control, 56, 16),
               {11, false, live.isConnected ? TextTone::kAccent : TextTone::kAmber});
    // 42 units below the frequency's line.
    if (!live.reason.empty()) {
        // Two lines of it, down to the row's end; there is no volume then.
        list.addTo(control, live.reason, list.band(control, 71, 35), {11, false, TextTone::kDim});
        list.texts.back().wraps = true;
        return;
    }
    if (!live.volume.empty()) list.addTo(control, live.volume, list.band(control, 72, 26), {13, false, TextTone::kDim});
}

bool isChosen(const DialogRow& row, const DialogView& view) {
    return row.kind == RowKind::kLanguage ? view.language == row.value : rowNumber(row, view.settings) == row.value;
}

void addControl(TextList& list, const DialogControl& control) {
    const DialogRow& row = *findRow(control.id);
    const auto caption = rowText(row, list.view().language);
    const PixelRect inner = list.inside(control, 8, 0, 8, 0);
    switch (control.look) {
        case ControlLook::kTab: {
            const bool isShown = row.value == list.layout().page;
            return list.addTo(control, caption, list.inside(control, 18, 0, 8, 0),
                              {14, isShown, isShown ? TextTone::kStrong : TextTone::kDim});
        }
        case ControlLook::kLanguage: {
            const bool isOn = isChosen(row, list.view());
            list.addTo(control, caption, inner,
                       {13, isOn, isOn ? TextTone::kOnAccent : TextTone::kPlain, TextSide::kMiddle});
            list.texts.back().language = row.value;
            return;
        }
        case ControlLook::kOption: {
            const TextTone tone = isChosen(row, list.view()) ? TextTone::kOnAccent : TextTone::kPlain;
            return list.addTo(control, caption, inner, {12, true, tone, TextSide::kMiddle});
        }
        case ControlLook::kToggle:
        case ControlLook::kCompactToggle:
            return addToggle(list, control, row);
        case ControlLook::kSlider:
            return addSlider(list, control, row);
        case ControlLook::kSegments:
            return addSegments(list, control, row);
        case ControlLook::kSelector:
        case ControlLook::kFixedKey:
            return addSelector(list, control, row);
        case ControlLook::kButton:
            return list.addTo(control, caption, inner, {13, false, TextTone::kPlain, TextSide::kMiddle});
        case ControlLook::kPrimaryButton:
            return list.addTo(control, caption, inner, {13, true, TextTone::kOnAccent, TextSide::kMiddle});
        case ControlLook::kLive:
            return addLive(list, control);
        case ControlLook::kWindowButton:
            return;  // a drawn cross
    }
}

Style styleOf(DialogTextStyle style) {
    switch (style) {
        case DialogTextStyle::kHeading:
            return {13, true, TextTone::kAccent};
        case DialogTextStyle::kNote:
            return {12, false, TextTone::kDim};
        case DialogTextStyle::kAppName:
            return {28, true, TextTone::kStrong};
        case DialogTextStyle::kAppVersion:
            return {13, false, TextTone::kAccent};
        case DialogTextStyle::kParagraph:
            return {14, false, TextTone::kPlain};
        case DialogTextStyle::kAboutLabel:
            return {13, false, TextTone::kDim};
        case DialogTextStyle::kAboutValue:
            return {13, false, TextTone::kStrong};
    }
    return kLabel;
}

void addPageText(TextList& list, const DialogPageText& page) {
    const auto text = page.entry == kNoText ? std::string_view(page.value) : list.entry(page.entry);
    DialogText& item = list.add(text, page.rect, list.layout().pageView, styleOf(page.style));
    item.wraps = page.style == DialogTextStyle::kNote || page.style == DialogTextStyle::kParagraph;
}

void addTitle(TextList& list) {
    const DialogLayout& layout = list.layout();
    const PixelRect title = {layout.px(56), layout.px(11), layout.px(860), layout.px(35)};
    const PixelRect line = {layout.px(56), layout.px(35), layout.px(860), layout.px(53)};
    list.add(list.entry(kTextWindowTitle), title, layout.client, {17, true, TextTone::kStrong});
    list.add(list.entry(kTextTitleLine), line, layout.client, {12, false, TextTone::kDim});
}

std::u16string_view withoutLastSpaces(std::u16string_view text) {
    while (text.ends_with(u' ')) text.remove_suffix(1);
    return text;
}

}  // namespace

LiveStatus liveStatusOf(const LiveRadio& radio, std::int32_t com, LiveMemory& memory, std::uint64_t nowMs) {
    LiveStatus live;
    if (radio.isConnected) memory.connectedMs = nowMs;
    live.isConnected = radio.isConnected && radio.isKnown;
    live.frequency = "COM  ---.--- MHz";
    if (live.isConnected) {
        live.frequency = "COM" + std::to_string(com) + "   " + std::to_string(radio.activeKHz / 1000) + "." +
                         padded(radio.activeKHz % 1000) + " MHz";
    }
    if (radio.volume >= 0.0f) live.volume = "VOL " + formatFixed(static_cast<double>(radio.volume) * 100.0, 0) + "%";
    const bool isOld = radio.isConnected && nowMs - radio.readTickMs > kFreshMs && nowMs > radio.readTickMs;
    const bool isJustLost =
        !radio.isConnected && memory.connectedMs != 0 && nowMs - memory.connectedMs < kRecentlyLostMs;
    if (!radio.isConnected) live.reason = radio.reason;
    live.stateEntry = isOld || isJustLost ? kTextStaleData
                      : radio.isConnected ? kTextSimConnected
                                          : kTextSimNotConnected;
    return live;
}

std::vector<DialogText> dialogTexts(const DialogLayout& layout, const DialogView& view) {
    TextList list(layout, view);
    addTitle(list);
    for (const DialogPageText& text : layout.pageTexts) addPageText(list, text);
    for (const DialogControl& control : layout.controls) addControl(list, control);
    return std::move(list.texts);
}

std::int32_t lineHeightOf(const DialogText& text) {
    return (text.fontPixels * 3 + 1) / 2;
}

std::vector<std::string> linesOf(const DialogText& text, const MeasureDialogText& measure) {
    if (!text.wraps || text.text.empty()) return {text.text};
    const std::u16string units = utf16FromUtf8(text.text);
    const auto seen = [](std::u16string_view piece) { return utf8FromUtf16(withoutLastSpaces(piece)); };
    const auto widthOf = [&](std::u16string_view piece) { return static_cast<float>(measure(text, seen(piece))); };
    std::vector<std::string> lines;
    for (const auto line : wrapText(units, static_cast<float>(text.rect.width()), widthOf, kDescriptionWrap))
        lines.push_back(seen(line));
    return lines;
}

bool isFitting(const DialogText& text, const MeasureDialogText& measure) {
    const auto lines = linesOf(text, measure);
    const std::int32_t height =
        text.wraps ? lineHeightOf(text) * static_cast<std::int32_t>(lines.size()) : text.fontPixels;
    if (height > text.rect.bottom - text.rect.top) return false;
    return std::all_of(lines.begin(), lines.end(), [&](const std::string& line) {
        return measure(text, line) <= text.rect.right - text.rect.left;
    });
}
