// The radio panel without its artwork: a DLL whose theme images are missing or damaged still gives a working panel.
#include <cstring>
#include "tests/client/panel_test.h"
#include "tests/client/pe_image.h"

namespace {

constexpr WORD kFirstThemeImage = 2001;
constexpr WORD kElsewhere = 1000;                                        // what is asked for has another number
constexpr WORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);  // what the resource compiler writes

bool hasImage(const std::filesystem::path& dll, std::int32_t theme) {
    const HMODULE module = LoadLibraryExW(dll.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const bool found = FindResourceW(module, MAKEINTRESOURCEW(kFirstThemeImage + theme), RT_RCDATA) != nullptr;
    FreeLibrary(module);
    return found;
}

// Gives the image another number. Wine's UpdateResource takes nothing out of a file.
bool hideImage(const std::filesystem::path& dll, std::int32_t theme) {
    constexpr std::uint32_t kRawData = 10;  // RT_RCDATA
    std::string image = readFile(dll);
    const auto number = static_cast<std::uint32_t>(kFirstThemeImage + theme);
    const auto offset = resourceNumberOffset(image, kRawData, number);
    if (!offset) return false;
    const std::uint32_t hidden = number + kElsewhere;
    std::memcpy(image.data() + *offset, &hidden, sizeof hidden);
    return writeFile(dll, image) && !hasImage(dll, theme);
}

bool replaceImage(const std::filesystem::path& dll, std::int32_t theme, std::string bytes) {
    const HANDLE update = BeginUpdateResourceW(dll.c_str(), FALSE);
    const bool updated = UpdateResourceW(update, RT_RCDATA, MAKEINTRESOURCEW(kFirstThemeImage + theme), kEnglish,
                                         bytes.data(), static_cast<DWORD>(bytes.size()));
    return EndUpdateResourceW(update, FALSE) && updated && hasImage(dll, theme);
}

}  // namespace

class PanelArt : public PanelTest {
  protected:
    // Starts with a DLL in which every theme's image is this; empty: none.
    ::testing::AssertionResult loadWithImages(const std::string& bytes) {
        std::filesystem::copy_file(productFile("corvalis_win64.dll"), session.dll,
                                   std::filesystem::copy_options::overwrite_existing);
        // The last first: the numbers stay in order, as those who look for one expect.
        for (std::int32_t theme = kThemeCount - 1; theme >= 0; theme--) {
            if (!hasImage(session.dll, theme)) return ::testing::AssertionFailure() << "no image to begin with";
            if (!(bytes.empty() ? hideImage(session.dll, theme) : replaceImage(session.dll, theme, bytes)))
                return ::testing::AssertionFailure() << "the file could not be changed";
        }
        if (!session.plugin.load(session.dll)) return ::testing::AssertionFailure() << session.plugin.error();
        session.plugin.exports().setFunctionPointers(host.table());
        session.plugin.exports().registerPluginID(kPluginId);
        return ::testing::AssertionSuccess();
    }
    void expectWorkingPanels() {
        for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
            ASSERT_TRUE(show(theme)) << themeName(theme);
            EXPECT_TRUE(clickSaves(kCom2Key, "radio=COM2")) << themeName(theme);
            panel().wheel(theme == kGeneralTheme ? kStandbyMhzDigits : kLargeKnob, 120);
            EXPECT_EQ(nextTuning(2), "standby 122975") << themeName(theme);
            answer();
            session.stop();
        }
    }
};

TEST_F(PanelArt, MissingGivesAWorkingPanel) {
    ASSERT_TRUE(loadWithImages(""));
    expectWorkingPanels();
}

TEST_F(PanelArt, DamagedGivesAWorkingPanel) {
    for (const char* bytes : {"\x89PNG\r\n\x1a\n but nothing after that", "no image at all"}) {
        ASSERT_TRUE(loadWithImages(bytes));
        expectWorkingPanels();
        session.plugin.unload();
    }
}
