// dialog_rows.h - the controls of the settings dialog as data: one row per control, bound to a field of a Settings
// record. Identifiers are WM_COMMAND identifiers too. Static data and pure functions. [any]
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include "settings/settings.h"

enum class RowKind {
    kTab,       // turns to page `value`
    kLanguage,  // interface language `value`
    kToggle,    // switches a bool
    kSlider,    // a number in a range
    kChoice,    // one of several options side by side in one control
    kOption,    // a button that sets the field to `value`
    kSelector,  // steps through the actions of a custom key
    kButton,    // does something
    kLive,      // shows the simulator's radio
};

// Identifiers of controls; other programs and tests may send them as WM_COMMAND, so they keep their numbers.
enum DialogId : int {
    kGeneralTab = 5000,
    kVoiceTab = 5001,
    kRadioTab = 5002,
    kAboutTab = 5003,
    kFirstLanguage = 5100,  // + language
    kWindowButton = 5150,
    kMasterToggle = 6000,
    kPanelVisibleToggle = 6001,
    kThemeChoice = 6002,
    kOpacitySlider = 6003,
    kPanelScaleSlider = 6004,
    kResetPanel = 6005,
    kLiveRow = 6006,
    kAutoSwitchingToggle = 6020,
    kFollowVolumeToggle = 6021,
    kReceiveVolumeSlider = 6022,
    kTransmitGainSlider = 6023,
    kVolumeMinSlider = 6024,
    kVolumeMaxSlider = 6025,
    kDistortSelfToggle = 6026,
    kDistortOthersToggle = 6027,
    kTailSelfToggle = 6028,
    kTailOthersToggle = 6029,
    kEqualizeToggle = 6030,
    kNoiseReductionToggle = 6031,
    kCom1Option = 6040,
    kCom2Option = 6041,
    kActiveOption = 6042,
    kStandbyOption = 6043,
    kPinToggle = 6044,
    kLampsToggle = 6045,
    kTextAlertToggle = 6046,
    kTextAutoOpenToggle = 6047,
    kTextScaleSlider = 6048,
    kPreviewMessages = 6049,
    kClearMessages = 6050,
    kKeyASelector = 6060,
    kKeyBSelector = 6061,
    kKeyCSelector = 6062,
    kKeyDSelector = 6063,
    kKeyESelector = 6064,
    kApply = 6080,
    kSaveAndClose = 6081,
    kCancel = 6082,
};
// The control of an interface language.
constexpr int languageControl(std::int32_t language) {
    return kFirstLanguage + language;
}
inline constexpr int kPageCount = 4;  // General, Voice & audio, Radio & functions, About

// Nothing, or the member that a row shows and changes.
using SettingsField = std::variant<std::monostate, bool Settings::*, std::int32_t Settings::*, float Settings::*,
                                   std::string Settings::*>;

struct SliderRange {
    float min = 0.0f;
    float max = 0.0f;
    float step = 0.0f;
    int decimals = 0;       // of the value's text: 0 or 2
    const char* unit = "";  // behind the value, after a space; may be empty
};

inline constexpr int kNoText = -1;

struct DialogRow {
    int id;
    RowKind kind;
    int label;        // TextId, or kNoText
    int description;  // the same, the smaller line under the label
    SettingsField field;
    std::int32_t value;   // of a tab, a language or an option
    SliderRange range;    // of a slider
    const char* caption;  // what the control is called in every language; null: its label
};

std::span<const DialogRow> dialogRows();
// Null if no row has that identifier.
const DialogRow* findRow(int id);

// The value of the field that the row is bound to; false or 0 when it has no field of that type.
bool rowSwitch(const DialogRow& row, const Settings& settings);
std::int32_t rowNumber(const DialogRow& row, const Settings& settings);
float rowLevel(const DialogRow& row, const Settings& settings);

// The number of options of a choice (3) or a selector (8), 0 for any other row; and what each is called.
int optionCount(const DialogRow& row);
std::string_view optionText(const DialogRow& row, int option, std::int32_t language);

// Whether a theme's panel has the custom key of a selector: GENERAL none, BOEING A and B, AIRBUS all. An unknown theme
// is GENERAL.
bool hasKey(std::int32_t theme, const DialogRow& selector);
// Key A's selector shows what the key is fixed to. Its field is changed by a command only; no key of the panel reads
// it.
bool isFixedKey(const DialogRow& row);

// What a control is called: its caption, the language's own name, or its label.
std::string_view rowText(const DialogRow& row, std::int32_t language);

// "0.85", "80 %", "12 dB".
std::string sliderText(const SliderRange& range, float value);
// The nearest step within the range, counted from the minimum and rounded to the decimals shown.
float snapToStep(const SliderRange& range, float value);

// The `language` setting that stands for an index 0..8 (clamped): the first of that language's codes.
const char* languageCode(std::int32_t language);
