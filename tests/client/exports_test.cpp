#include <windows.h>
#include <algorithm>
#include <cctype>
#include <cstring>
#include <set>
#include <vector>
#include "base/identity.h"
#include "tests/client/client_session_win.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/new_client_win.h"
#include "tests/client/pe_image.h"

namespace {

std::string lowerCase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// The names outside the set, joined. VERSION.dll is left out: Windows would take a file of that name beside the
// program.
std::string foreignLibraries(const std::filesystem::path& program) {
    static const std::set<std::string> kSystem = {"advapi32.dll", "comctl32.dll", "gdi32.dll", "gdiplus.dll",
                                                  "kernel32.dll", "msvcrt.dll",   "ole32.dll", "shell32.dll",
                                                  "user32.dll",   "ws2_32.dll"};
    std::string foreign;
    for (const std::string& library : importedLibraries(readFile(program))) {
        if (!kSystem.count(lowerCase(library))) foreign += library + " ";
    }
    return foreign;
}

// The version among the properties that Explorer shows; empty if the file has none.
std::string fileVersion(const std::filesystem::path& program) {
    DWORD ignored = 0;
    std::vector<char> resource(GetFileVersionInfoSizeW(program.c_str(), &ignored));
    void* text = nullptr;
    UINT length = 0;
    const auto size = static_cast<DWORD>(resource.size());
    if (size == 0 || !GetFileVersionInfoW(program.c_str(), 0, size, resource.data())) return {};
    if (!VerQueryValueW(resource.data(), L"\\StringFileInfo\\040904B0\\FileVersion", &text, &length)) return {};
    return toUtf8(static_cast<const wchar_t*>(text));
}

// True if the loaded module's own memory holds the bytes.
bool moduleHolds(const wchar_t* module, const void* bytes, std::size_t count) {
    const auto* base = reinterpret_cast<const char*>(GetModuleHandleW(module));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const auto* section = IMAGE_FIRST_SECTION(headers);
    for (int i = 0; i < headers->FileHeader.NumberOfSections; i++, section++) {
        if (!(section->Characteristics & IMAGE_SCN_MEM_WRITE)) continue;
        const char* start = base + section->VirtualAddress;
        const char* end = start + section->Misc.VirtualSize;
        const auto* wanted = static_cast<const char*>(bytes);
        if (std::search(start, end, wanted, wanted + count) != end) return true;
    }
    return false;
}

}  // namespace

TEST(PluginFile, ExportsTheListedNamesAndNoOthers) {
    std::vector<std::string> names = exportedNames(readFile(productFile("corvalis_win64.dll")));
    std::vector<std::string> listed(kExportNames.begin(), kExportNames.end());
    std::sort(names.begin(), names.end());
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(names, listed);
}

TEST(PluginFile, AndTheWorkerShowTheVersionInTheirProperties) {
    EXPECT_EQ(fileVersion(productFile("corvalis_win64.dll")), kPluginVersion);
    EXPECT_EQ(fileVersion(productFile("hopline_worker.exe")), kPluginVersion);
}

TEST(PluginFile, NeedsWindowsSystemLibrariesOnly) {
    const auto libraries = importedLibraries(readFile(productFile("corvalis_win64.dll")));
    EXPECT_GE(libraries.size(), 2u);  // otherwise the reader is broken
    EXPECT_EQ(foreignLibraries(productFile("corvalis_win64.dll")), "");
}

TEST(WorkerFile, NeedsWindowsSystemLibrariesOnly) {
    const auto libraries = importedLibraries(readFile(productFile("hopline_worker.exe")));
    EXPECT_GE(libraries.size(), 2u);
    EXPECT_EQ(foreignLibraries(productFile("hopline_worker.exe")), "");
}

using Exports = PluginTest;

TEST_F(Exports, TellTheIdentityInTheseTexts) {
    ASSERT_TRUE(session.load());
    const PluginExports& plugin = session.plugin.exports();
    EXPECT_STREQ(plugin.name(), "Corvalis");
    EXPECT_STREQ(plugin.version(), "1.3.0");
    EXPECT_EQ(plugin.apiVersion(), isNewClient() ? 26 : 23);
    EXPECT_STREQ(plugin.author(), "Quarrytone Studio");
    EXPECT_STREQ(plugin.description(), "MSFS 2024 自动切频与无线电语音效果插件。Quarrytone Studio 制作。");
    EXPECT_EQ(plugin.offersConfigure(), 1);
    EXPECT_EQ(plugin.requestAutoload(), 1);
}

TEST_F(Exports, CopyTheTableOfFunctionsVerbatim) {
    ASSERT_TRUE(session.load());
    HostFunctionTable table = host.table();
    table.entries[0] = nullptr;
    table.entries[kHostFunctionCount - 1] = reinterpret_cast<void (*)()>(1234);
    EXPECT_FALSE(moduleHolds(L"corvalis_win64.dll", &table, sizeof table));
    session.plugin.exports().setFunctionPointers(table);
    EXPECT_TRUE(moduleHolds(L"corvalis_win64.dll", &table, sizeof table));
}

TEST_F(Exports, DoNothingToTheHostBeforeInit) {
    ASSERT_TRUE(session.load());
    const PluginExports& plugin = session.plugin.exports();
    const ThreadStarts threads;
    plugin.currentServerConnectionChanged(kSchid);
    plugin.onConnectStatusChangeEvent(kSchid, 4, 0);
    plugin.onConnectStatusChangeEvent(kSchid, 0, 0);
    plugin.onClientMoveEvent(kSchid, kOtherClient, kLobby, 0, 0, "");
    plugin.onTalkStatusChangeEvent(kSchid, 1, 0, kOtherClient);
    plugin.onTalkStatusChangeEvent(kSchid, 0, 0, kOtherClient);
    EXPECT_EQ(plugin.onServerErrorEvent(kSchid, "", 768, "", ""), 0);
    EXPECT_EQ(plugin.onServerErrorEvent(kSchid, nullptr, 768, nullptr, nullptr), 0);
    short samples[480] = {};
    int edited = 0;
    plugin.onEditPlaybackVoiceDataEvent(kSchid, kOtherClient, samples, 480, 1);
    plugin.onEditCapturedVoiceDataEvent(kSchid, samples, 480, 1, &edited);
    HostTextMessage message;
    message.message = "cleared for take-off";
    EXPECT_EQ(session.plugin.deliver(message), 0);
    EXPECT_TRUE(host.calls().empty());
    EXPECT_EQ(threads.count(), 0);
    EXPECT_FALSE(std::filesystem::exists(session.dataFolder));
}

TEST_F(Exports, FreeMemoryTakesNull) {
    ASSERT_TRUE(session.load());
    session.plugin.exports().freeMemory(nullptr);
    EXPECT_TRUE(session.start());
}
