#include "plugin/menu_texts.h"
#include <algorithm>
#include "settings/language.h"

namespace {

// One row per entry, one line per language in the order of Language.
// clang-format off
constexpr const char* kMenuTexts[kMenuEntryCount][kLanguageCount] = {
    {
        "Corvalis 设置",
        "Corvalis 設定",
        "Corvalis Settings",
        "Corvalis 設定",
        "Corvalis 설정",
        "Corvalis Einstellungen",
        "Corvalis Paramètres",
        "Corvalis Ajustes",
        "Corvalis Настройки",
    },
    {
        "显示无线电面板",
        "顯示無線電面板",
        "Show radio panel",
        "無線パネルを表示",
        "무전기 패널 표시",
        "Funkpanel anzeigen",
        "Afficher le panneau radio",
        "Mostrar panel de radio",
        "Показать радиопанель",
    },
    {
        "显示文本消息 (PDC)",
        "顯示文字訊息 (PDC)",
        "Show text messages (PDC)",
        "テキストメッセージを表示 (PDC)",
        "문자 메시지 표시 (PDC)",
        "Textnachrichten (PDC)",
        "Messages texte (PDC)",
        "Mensajes de texto (PDC)",
        "Текстовые сообщения (PDC)",
    },
};
// clang-format on

// A language missing from a row would be a null.
constexpr bool isFilled() {
    for (const auto& row : kMenuTexts) {
        for (const char* const text : row) {
            if (!text) return false;
        }
    }
    return true;
}
static_assert(isFilled());

}  // namespace

const char* menuText(std::int32_t entry, std::int32_t language) {
    const auto row = std::clamp(entry, 1, kMenuEntryCount) - 1;
    return kMenuTexts[row][std::clamp(language, 0, kLanguageCount - 1)];
}
