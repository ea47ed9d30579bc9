#include "settings/dialog/dialog_model.h"
#include <algorithm>
#include <cmath>
#include <utility>
#include "settings/language.h"

namespace {

void copyField(const SettingsField& field, const Settings& from, Settings& to) {
    std::visit(
        [&](auto member) {
            if constexpr (!std::is_same_v<decltype(member), std::monostate>) to.*member = from.*member;
        },
        field);
}

template <class Type>
void change(DialogModel& model, Type Settings::*member, Type value) {
    model.working.*member = std::move(value);
    const SettingsField field = member;
    if (std::find(model.changed.begin(), model.changed.end(), field) == model.changed.end())
        model.changed.push_back(field);
}

void changeNumber(DialogModel& model, const DialogRow& row, std::int32_t value) {
    if (const auto* member = std::get_if<std::int32_t Settings::*>(&row.field)) change(model, *member, value);
}

void resetPanel(DialogModel& model) {
    const Settings defaults;
    change(model, &Settings::panel_x, defaults.panel_x);
    change(model, &Settings::panel_y, defaults.panel_y);
    change(model, &Settings::panel_scale, defaults.panel_scale);
    change(model, &Settings::opacity, defaults.opacity);
}

void chooseOption(DialogModel& model, const DialogRow& row, int option) {
    const int count = optionCount(row);
    const int next = option < 0 ? (rowNumber(row, model.working) + 1) % count : option;
    if (next < count) changeNumber(model, row, next);
}

DialogAction pressButton(DialogModel& model, int id) {
    switch (id) {
        case kResetPanel:
            resetPanel(model);
            return DialogAction::kNone;
        case kApply:
            return DialogAction::kApply;
        case kSaveAndClose:
            return DialogAction::kSaveAndClose;
        case kCancel:
        case kWindowButton:
            return DialogAction::kClose;
        case kPreviewMessages:
            return DialogAction::kPreviewMessages;
        case kClearMessages:
            return DialogAction::kClearMessages;
        default:
            return DialogAction::kNone;
    }
}

}  // namespace

void followLive(DialogModel& model, const Settings& live) {
    Settings next = live;
    for (const SettingsField& field : model.changed) copyField(field, model.working, next);
    model.working = std::move(next);
}

DialogAction runDialogCommand(DialogModel& model, int id, int option) {
    const DialogRow* row = findRow(id);
    if (!row) return DialogAction::kNone;
    switch (row->kind) {
        case RowKind::kTab:
            model.page = row->value;
            break;
        case RowKind::kLanguage:
            change(model, &Settings::language, std::string(languageCode(row->value)));
            break;
        case RowKind::kToggle:
            if (const auto* member = std::get_if<bool Settings::*>(&row->field))
                change(model, *member, !(model.working.*(*member)));
            break;
        case RowKind::kOption:
            changeNumber(model, *row, row->value);
            break;
        case RowKind::kChoice:
        case RowKind::kSelector:
            chooseOption(model, *row, option);
            break;
        case RowKind::kButton:
            return pressButton(model, id);
        case RowKind::kSlider:
        case RowKind::kLive:
            break;
    }
    return DialogAction::kNone;
}

void setLevel(DialogModel& model, const DialogRow& row, float value) {
    const auto* member = std::get_if<float Settings::*>(&row.field);
    if (!member || row.kind != RowKind::kSlider || std::isnan(value)) return;
    change(model, *member, snapToStep(row.range, std::clamp(value, row.range.min, row.range.max)));
}

void stepLevel(DialogModel& model, const DialogRow& row, int count) {
    setLevel(model, row, rowLevel(row, model.working) + static_cast<float>(count) * row.range.step);
}

void stepOption(DialogModel& model, const DialogRow& row, int count) {
    const int last = optionCount(row) - 1;
    if (last < 0) return;
    changeNumber(model, row, std::clamp(rowNumber(row, model.working) + count, 0, last));
}

std::int32_t dialogLanguage(const DialogModel& model, std::uint16_t systemLanguage) {
    return chooseLanguage(model.working.language, systemLanguage);
}

void commitDialog(DialogModel& model, SettingsStore& store, std::atomic<std::int32_t>& languageIndex,
                  std::uint16_t systemLanguage) {
    Settings stored;
    updateSettings(store, [&](Settings& live) {
        for (const SettingsField& field : model.changed) copyField(field, model.working, live);
        if (live.volume_min > live.volume_max) std::swap(live.volume_min, live.volume_max);
        stored = live;
    });
    model.changed.clear();
    model.working = stored;
    languageIndex = dialogLanguage(model, systemLanguage);
}
