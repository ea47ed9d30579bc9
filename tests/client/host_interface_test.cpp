// What the plugin answers to voice clients of several names and versions: each a process of its own.
#include <windows.h>
#include <cstdlib>
#include <cstring>
#include "tests/client/client_session_win.h"
#include "tests/simulator/program_win.h"

namespace {

constexpr std::uint32_t kPatienceMs = 30'000;  // a busy machine starts a program slowly

// A version resource with its fixed part alone, as Windows lays it out.
std::string versionResource(WORD major, WORD minor, WORD patch) {
    VS_FIXEDFILEINFO fixed = {};
    fixed.dwSignature = 0xFEEF04BD;
    fixed.dwStrucVersion = 0x00010000;
    fixed.dwFileVersionMS = fixed.dwProductVersionMS = MAKELONG(minor, major);
    fixed.dwFileVersionLS = fixed.dwProductVersionLS = MAKELONG(0, patch);
    constexpr wchar_t kKey[] = L"VS_VERSION_INFO";
    std::string bytes(6 + sizeof kKey, '\0');
    std::memcpy(bytes.data() + 6, kKey, sizeof kKey);
    bytes.resize((bytes.size() + 3) / 4 * 4);
    bytes.append(reinterpret_cast<const char*>(&fixed), sizeof fixed);
    const WORD lengths[] = {static_cast<WORD>(bytes.size()), sizeof fixed, 0};
    std::memcpy(bytes.data(), lengths, sizeof lengths);
    return bytes;
}

bool setVersion(const std::filesystem::path& program, std::string resource) {
    const HANDLE update = BeginUpdateResourceW(program.c_str(), FALSE);
    if (!update) return false;
    const bool isTaken = UpdateResourceW(update, MAKEINTRESOURCEW(16), MAKEINTRESOURCEW(1), 0, resource.data(),
                                         static_cast<DWORD>(resource.size())) != FALSE;
    return EndUpdateResourceW(update, !isTaken) != FALSE && isTaken;
}

}  // namespace

class HostInterfaceAnswer : public ::testing::Test {
  protected:
    HostInterfaceAnswer() { std::filesystem::create_directories(appData_); }

    // A client of that name; a version of nothing leaves it without a resource.
    std::filesystem::path clientOf(const wchar_t* name, const std::string& resource) {
        const auto folder = machine_.path / std::to_wstring(++clients_);
        std::filesystem::create_directories(folder);
        std::filesystem::copy_file(programFolder() / "asking_client.exe", folder / name);
        EXPECT_TRUE(resource.empty() || setVersion(folder / name, resource));
        return folder / name;
    }
    std::uint32_t ask(const std::filesystem::path& client) {
        standin::Program program;
        EXPECT_TRUE(program.start(L'"' + client.wstring() + L"\" " + productFile("corvalis_win64.dll").wstring()));
        return program.waitForEnd(kPatienceMs).value_or(0);
    }

    FreshFolder machine_{L"corvalis clients"};
    std::filesystem::path appData_ = machine_.path / L"Roaming";
    EnvironmentValue variable_{L"APPDATA", appData_.wstring()};
    int clients_ = 0;
};

TEST_F(HostInterfaceAnswer, FitsEachClient) {
    const struct {
        const wchar_t* name;
        std::string resource;
        std::uint32_t answer;
    } rows[] = {
        {L"ts3client_win64.exe", versionResource(3, 3, 2), 23},
        {L"ts3client_win64.exe", versionResource(3, 5, 6), 23},
        {L"ts3client_win64.exe", versionResource(3, 6, 0), 26},
        {L"ts3client_win64.exe", versionResource(3, 6, 2), 26},
        {L"ts3client_win64.exe", versionResource(3, 10, 0), 26},
        {L"other.exe", versionResource(3, 6, 2), 23},
        {L"ts3client_win64.exe", "", 23},
        {L"ts3client_win64.exe", "no version at all", 23},
    };
    for (const auto& row : rows) EXPECT_EQ(ask(clientOf(row.name, row.resource)), row.answer) << row.answer;
    EXPECT_TRUE(std::filesystem::is_empty(appData_));  // a question leaves nothing behind
}

TEST_F(HostInterfaceAnswer, IsTheUsersWhereTheFileSaysSo) {
    const auto data = appData_ / L"Corvalis";
    std::filesystem::create_directories(data);
    const auto newClient = clientOf(L"ts3client_win64.exe", versionResource(3, 6, 2));
    const auto oldClient = clientOf(L"ts3client_win64.exe", versionResource(3, 5, 6));
    const struct {
        const char* text;
        std::uint32_t newAnswer, oldAnswer;
    } rows[] = {{"27\r\n", 27, 27}, {"24", 24, 24}, {"twenty-seven\r\n", 26, 23}, {"100", 26, 23}, {"", 26, 23}};
    for (const auto& row : rows) {
        ASSERT_TRUE(writeFile(data / "host_api.txt", row.text));
        EXPECT_EQ(ask(newClient), row.newAnswer) << row.text;
        EXPECT_EQ(ask(oldClient), row.oldAnswer) << row.text;
    }
}

using HostInterfaceLog = PluginTest;

// In the run as a new client this also says that it is one.
TEST_F(HostInterfaceLog, SaysWhatWasAnsweredAndWhyBehindTheFirstLine) {
    const char* const asked = std::getenv("CORVALIS_NEW_CLIENT");
    const bool isNew = asked && *asked;
    const std::string expected = isNew ? "answers interface version 26: ts3client_client_tests.exe 3.6.2"
                                       : "answers interface version 23: client_tests.exe 3.6.2";
    ASSERT_TRUE(session.start());
    const auto lines = host.logLines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_TRUE(lines[0].starts_with("Corvalis loaded: ")) << lines[0];
    EXPECT_EQ(lines[1], "Corvalis " + expected);
    EXPECT_EQ(readFile(session.dataFolder / "host_api_answer.txt"), expected + "\r\n");
}
