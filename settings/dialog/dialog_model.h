// dialog_model.h - what the settings dialog edits: a working copy that follows the live record in everything the user
// has not touched, so that storing it never takes back what the panel has changed meanwhile.
// [dialog] Belongs to the thread that runs the dialog; only commitDialog reaches the shared record.
#pragma once
#include <atomic>
#include <cstdint>
#include <vector>
#include "settings/dialog/dialog_rows.h"
#include "settings/settings_store.h"

struct DialogModel {
    Settings working;
    std::vector<SettingsField> changed;  // what the user has set since the last commit, each once
    int page = 0;                        // 0..kPageCount - 1
};

// What a command asks for beyond the working copy.
enum class DialogAction {
    kNone,
    kApply,
    kSaveAndClose,
    kClose,
    kPreviewMessages,
    kClearMessages,
};

// Takes over the live record, except for the fields the user has changed.
void followLive(DialogModel& model, const Settings& live);

// Carries a command out on the model. option chooses among a choice's or a selector's options; below 0 it steps to the
// next one, from the last to the first. Unknown identifiers and sliders do nothing.
DialogAction runDialogCommand(DialogModel& model, int id, int option = -1);

// Sets a slider's field, to the nearest step within its range. Does nothing for a row that is not a slider, or for NaN.
void setLevel(DialogModel& model, const DialogRow& row, float value);
// count steps up, or down when negative.
void stepLevel(DialogModel& model, const DialogRow& row, int count);
// count options further, staying within them.
void stepOption(DialogModel& model, const DialogRow& row, int count);

// The language the dialog shows: the working copy's, or the system's when it names none.
std::int32_t dialogLanguage(const DialogModel& model, std::uint16_t systemLanguage);

// Stores what the user has changed, as one step, with volume_min and volume_max in order; then chooses the interface
// language anew. The working copy is the live record afterwards.
void commitDialog(DialogModel& model, SettingsStore& store, std::atomic<std::int32_t>& languageIndex,
                  std::uint16_t systemLanguage);
