#include <windows.h>
#include "tests/client/client_session_win.h"

namespace {

struct MenuTexts {
    const char* language;
    const char* settings;
    const char* panel;     // nullptr: any text
    const char* messages;  // nullptr: any text
};

const MenuTexts kMenuTexts[] = {
    {"en", "Corvalis Settings", "Show radio panel", "Show text messages (PDC)"},
    {"de", "Corvalis Einstellungen", "Funkpanel anzeigen", "Textnachrichten (PDC)"},
    {"fr", "Corvalis Paramètres", "Afficher le panneau radio", "Messages texte (PDC)"},
    {"es", "Corvalis Ajustes", "Mostrar panel de radio", "Mensajes de texto (PDC)"},
    {"zh-CN", "Corvalis 设置", nullptr, nullptr},
    {"zh-TW", "Corvalis 設定", nullptr, nullptr},
    {"ja", "Corvalis 設定", nullptr, nullptr},
};

void expectMenus(const std::vector<HostMenuItem>& menus, const MenuTexts& texts) {
    const char* const expected[] = {texts.settings, texts.panel, texts.messages};
    ASSERT_EQ(menus.size(), 3u) << texts.language;
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(menus[i].type, 0) << texts.language;
        EXPECT_EQ(menus[i].id, i + 1) << texts.language;
        EXPECT_STREQ(menus[i].icon, "") << texts.language;
        EXPECT_STRNE(menus[i].text, "") << texts.language;
        if (!expected[i]) continue;
        EXPECT_STREQ(menus[i].text, expected[i]) << texts.language;
    }
}

}  // namespace

using Menus = PluginTest;

TEST_F(Menus, AreThreeGlobalEntriesInTheSettingsLanguage) {
    for (const MenuTexts& texts : kMenuTexts) {
        ASSERT_TRUE(session.writeSettings(std::string("language=") + texts.language + "\r\n"));
        ASSERT_TRUE(session.start());
        expectMenus(session.plugin.takeMenus(), texts);
        session.stop();
    }
}

TEST_F(Menus, LeaveTheIconPointerAlone) {
    ASSERT_TRUE(session.start());
    HostMenuItem** items = nullptr;
    char untouched = 'x';
    char* icon = &untouched;
    session.plugin.exports().initMenus(&items, &icon);
    EXPECT_EQ(icon, &untouched);
    ASSERT_NE(items, nullptr);
    for (HostMenuItem** item = items; *item; item++) session.plugin.exports().freeMemory(*item);
    session.plugin.exports().freeMemory(items);
}

TEST_F(Menus, CanBeAskedForBeforeInit) {
    ASSERT_TRUE(session.load());
    EXPECT_EQ(session.plugin.takeMenus().size(), 3u);
}

TEST_F(Menus, AreMadeAnewEachTime) {
    ASSERT_TRUE(session.start());
    EXPECT_EQ(session.plugin.takeMenus().size(), 3u);
    EXPECT_EQ(session.plugin.takeMenus().size(), 3u);
}

TEST_F(Menus, ChosenBeforeInitDoNothing) {
    ASSERT_TRUE(session.load());
    const int threads = threadCount();
    const WorkingFolder here(session.machine.path);  // where a careless write would land
    for (const int id : {0, 1, 2, 3, 4}) session.plugin.exports().onMenuItemEvent(kSchid, 0, id, 0);
    EXPECT_EQ(threadCount(), threads);
    EXPECT_FALSE(std::filesystem::exists(session.dataFolder));
    EXPECT_FALSE(std::filesystem::exists(session.machine.path / "settings.ini"));
    EXPECT_TRUE(host.calls().empty());
}

TEST_F(Menus, ShowPanelSavesTheSettingsWithThePanelVisible) {
    ASSERT_TRUE(session.writeSettings("panel_visible=0\r\ntheme=1\r\npanel_x=-12\r\n"));
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(kSchid, 0, 2, 0);
    EXPECT_NE(session.settings().find("\r\npanel_visible=1\r\n"), std::string::npos);
    EXPECT_NE(session.settings().find("\r\ntheme=1\r\n"), std::string::npos);
    EXPECT_NE(session.settings().find("\r\npanel_x=-12\r\n"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(session.dataFolder / "settings.ini.tmp"));
}

TEST_F(Menus, UnknownEntriesAreIgnored) {
    ASSERT_TRUE(session.start());
    for (const int id : {-1, 0, 4, 1000}) session.plugin.exports().onMenuItemEvent(kSchid, 0, id, 0);
    EXPECT_FALSE(std::filesystem::exists(session.dataFolder / "settings.ini"));
}

TEST_F(Menus, EntryOfAnotherServerAndTypeCountsTheSame) {
    ASSERT_TRUE(session.start());
    session.plugin.exports().onMenuItemEvent(77, 2, 2, 12345);
    EXPECT_NE(session.settings().find("\r\npanel_visible=1\r\n"), std::string::npos);
}
