// interface_texts.h - every text of the plugin's own windows in nine languages, and the font family each language is
// drawn in. Static data; UTF-8, without a zero inside. [any]
#pragma once
#include <cstdint>
#include <span>
#include <string_view>
#include "settings/language.h"

// In the order of the table. A name ends in Hint where the text is the smaller line under another.
enum TextId : int {
    kTextWindowTitle,
    kTextTitleLine,
    kTextSaveAndClose,
    kTextCancel,
    kTextApply,
    kTextPageGeneral,
    kTextPageVoice,
    kTextPageRadio,
    kTextPageAbout,
    kTextLanguage,
    kTextTheme,
    kTextPanelScale,
    kTextOpacity,
    kTextMaster,
    kTextMasterHint,
    kTextPanelVisible,
    kTextPanelVisibleHint,
    kTextResetPanel,
    kTextOptions,
    kTextAutoSwitching,
    kTextAutoSwitchingHint,
    kTextFollowVolume,
    kTextFollowVolumeHint,
    kTextDistortSelf,
    kTextDistortOthers,
    kTextTailSelf,
    kTextTailOthers,
    kTextReceiveAndGain,
    kTextReceiveVolume,
    kTextTransmitGain,
    kTextVolumeMin,
    kTextVolumeMax,
    kTextAudioEffects,
    kTextOther,
    kTextEqualize,
    kTextEqualizeHint,
    kTextNoiseReduction,
    kTextNoiseReductionHint,
    kTextRadio,
    kTextPanel,
    kTextPin,
    kTextPinHint,
    kTextLamps,
    kTextLampsHint,
    kTextTextMessages,
    kTextTextAlert,
    kTextTextAlertHint,
    kTextTextAutoOpen,
    kTextTextAutoOpenHint,
    kTextTextScale,
    kTextPreviewMessages,
    kTextClearMessages,
    kTextCustomKeys,
    kTextKeyAFixed,
    kTextKeyANote,
    kTextActionNone,  // what a custom key does: + bind_* code 0..7
    kTextActionSwap,
    kTextActionAutoSwitching,
    kTextActionCom1,
    kTextActionCom2,
    kTextActionActive,
    kTextActionStandby,
    kTextActionPin,
    kTextAboutParagraph,
    kTextAuthor,
    kTextSupport,
    kTextPlatform,
    kTextLicence,
    kTextLanguageNames,
    kTextLive,
    kTextSimConnected,
    kTextStaleData,
    kTextSimNotConnected,
    kTextFrom,
    kTextTime,
    kTextNoMessages,
    kTextPageKeys,
    kTextEmpty,
    kTextSupportLine,  // the value beside kTextSupport
    kTextEnd,          // no text: one behind the last
};
inline constexpr int kTextCount = kTextEnd;

// A text in a language; the index is clamped to the nine languages. An entry outside the table is empty.
std::string_view textOf(std::int32_t language, int entry);

// The family that text in this language is drawn in, with the same clamp.
std::string_view fontFamilyOf(std::int32_t language);
// That family, followed by those that have what it may lack: ideographs, kana, Hangul, symbols.
std::span<const std::string_view> fontFamiliesOf(std::int32_t language);
