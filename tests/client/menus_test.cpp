#include <windows.h>
#include <set>
#include "plugin/menu_texts.h"
#include "settings/dialog/dialog_rows.h"
#include "settings/language.h"
#include "tests/client/client_session_win.h"
// tlhelp32.h needs windows.h before it.
#include <tlhelp32.h>

namespace {

void expectMenus(const std::vector<HostMenuItem>& menus, std::int32_t language) {
    ASSERT_EQ(menus.size(), static_cast<std::size_t>(kMenuEntryCount)) << language;
    for (int i = 0; i < kMenuEntryCount; i++) {
        EXPECT_EQ(menus[i].type, 0) << language;
        EXPECT_EQ(menus[i].id, i + 1) << language;
        EXPECT_STREQ(menus[i].icon, "") << language;
        EXPECT_STREQ(menus[i].text, menuText(i + 1, language)) << language;
    }
}

// How many threads of this process were not in known, which then has them.
int newThreads(std::set<DWORD>& known) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) count += known.insert(entry.th32ThreadID).second;
    }
    CloseHandle(snapshot);
    return count;
}

}  // namespace

using Menus = PluginTest;

TEST_F(Menus, AreThreeGlobalEntriesInTheSettingsLanguage) {
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        ASSERT_TRUE(
            session.writeSettings("panel_visible=0\r\nlanguage=" + std::string(languageCode(language)) + "\r\n"));
        ASSERT_TRUE(session.start());
        expectMenus(session.plugin.takeMenus(), language);
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
    std::set<DWORD> threads;
    EXPECT_GT(newThreads(threads), 0);
    const WorkingFolder here(session.machine.path);  // where a careless write would land
    for (const int id : {0, 1, 2, 3, 4}) session.plugin.exports().onMenuItemEvent(kSchid, 0, id, 0);
    EXPECT_EQ(newThreads(threads), 0);
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
    EXPECT_FALSE(keepsTemporaryFiles(session.dataFolder));
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
