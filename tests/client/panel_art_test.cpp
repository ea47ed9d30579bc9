// panel_art_test.cpp - the panel without artwork: a DLL with missing or damaged images still gives a working panel.
#include <cstring>
#include "tests/client/panel_test.h"
#include "tests/client/pe_image.h"

namespace {

constexpr WORD kFirstThemeImage = 2001;
constexpr WORD kElsewhere = 1000;                                        // added to hide an image's number
constexpr WORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);  // what the resource compiler writes

bool hasImage(const std::filesystem::path& dll, std::int32_t theme) {
    const HMODULE module = LoadLibraryExW(dll.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const bool found = FindResourceW(module, MAKEINTRESOURCEW(kFirstThemeImage + theme), RT_RCDATA) != nullptr;
    FreeLibrary(module);
    return found;
}

// Gives the image another number, since Wine's UpdateResource cannot remove anything from a file.
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
    // Loads a DLL in which every theme's image consists of these bytes; empty: no images.
    ::testing::AssertionResult loadWithImages(const std::string& bytes) {
        std::filesystem::copy_file(productFile("corvalis_win64.dll"), session.dll,
                                   std::filesystem::copy_options::overwrite_existing);
        // The last first: so the numbers stay in order, as a search for one expects.
        for (std::int32_t theme = kThemeCount - 1; theme >= 0; theme--) {
            if (!hasImage(session.dll, theme)) return ::testing::AssertionFailure() << "no image to begin with";
            if (!(bytes.empty() ? hideImage(session.dll, theme) : replaceImage(session.dll, theme, bytes)))
                return ::testing::AssertionFailure() << "the file could not be changed";
        }
        if (!session.plugin.load(session.dll) || !session.plugin.introduce(host))
            return ::testing::AssertionFailure() << session.plugin.error();
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
