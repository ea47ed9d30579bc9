// dialog_walk.h - every setting in the dialog changed once, driven by the dialog's own tables, and the record that must
// result. For a hand on the model and for one on the real window.
#pragma once
#include <set>
#include "settings/dialog/dialog_layout.h"

// What a walk does to a control, and the record so far.
struct DialogWalk {
    Settings expected;
    int sliders = 0;
    int selectors = 0;

    template <class Type>
    void expect(const DialogRow& row, Type value) {
        if (const auto* member = std::get_if<Type Settings::*>(&row.field)) expected.*(*member) = value;
    }
    // A new place on each slider's track, further along for each slider: the volumes stay in order.
    float nextLevel(const SliderRange& range) {
        const float share = 0.2f + 0.05f * static_cast<float>(sliders++);
        return snapToStep(range, range.min + share * (range.max - range.min));
    }
    // A new action for each key, never the first one.
    int nextOption(const DialogRow& row) { return 1 + selectors++ % (optionCount(row) - 1); }
};

// By the mouse. Hand: layout(), click(id, part), drag(id, from, to).
template <class Hand>
void clickControl(Hand& hand, const DialogRow& row, DialogWalk& walk) {
    switch (row.kind) {
        case RowKind::kToggle:
            hand.click(row.id, 0);
            walk.expect(row, !rowSwitch(row, walk.expected));
            break;
        case RowKind::kSlider: {
            const float level = walk.nextLevel(row.range);
            hand.drag(row.id, rowLevel(row, walk.expected), level);
            walk.expect(row, level);
            break;
        }
        case RowKind::kLanguage:
            hand.click(row.id, 0);
            walk.expect(row, std::string(languageCode(row.value)));
            break;
        case RowKind::kOption:
            hand.click(row.id, 0);
            walk.expect(row, row.value);
            break;
        case RowKind::kChoice:
            hand.click(row.id, optionCount(row) - 1);
            walk.expect(row, optionCount(row) - 1);
            break;
        case RowKind::kSelector: {
            if (row.id == kKeyASelector) break;  // fixed: a click changes nothing
            const int option = walk.nextOption(row);
            for (int i = 0; i < option; i++) hand.click(row.id, 1);
            walk.expect(row, option);
            break;
        }
        case RowKind::kTab:
        case RowKind::kButton:
        case RowKind::kLive:
            break;
    }
}

// All pages, each setting where it appears first, beginning with the defaults. Hand: also turnTo(page).
template <class Hand>
Settings clickEverySetting(Hand& hand) {
    DialogWalk walk;
    std::set<int> worked;
    for (int page = 0; page < kPageCount; page++) {
        hand.turnTo(page);
        const DialogLayout layout = hand.layout();
        for (const DialogControl& control : layout.controls) {
            if (control.isOnPage && worked.insert(control.id).second) clickControl(hand, *findRow(control.id), walk);
        }
    }
    return walk.expected;
}

// By commands, which sliders do not take. Hand: command(id, option).
template <class Hand>
Settings commandEverySetting(Hand& hand) {
    DialogWalk walk;
    for (const DialogRow& row : dialogRows()) {
        int option = -1;
        if (row.kind == RowKind::kToggle)
            walk.expect(row, !rowSwitch(row, walk.expected));
        else if (row.kind == RowKind::kLanguage)
            walk.expect(row, std::string(languageCode(row.value)));
        else if (row.kind == RowKind::kOption)
            walk.expect(row, row.value);
        else if (row.kind == RowKind::kChoice || row.kind == RowKind::kSelector)
            walk.expect(row, option = row.kind == RowKind::kChoice ? optionCount(row) - 1 : walk.nextOption(row));
        else
            continue;
        hand.command(row.id, option);
    }
    return walk.expected;
}
