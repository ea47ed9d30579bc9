#include "plugin/host_interface.h"
#include <gtest/gtest.h>
#include "tests/unit/fakes.h"

namespace {

HostProgram program(const char* name, std::uint16_t major, std::uint16_t minor, std::uint16_t patch = 0) {
    return {name, ProgramVersion{{major, minor, patch, 0}}};
}

}  // namespace

TEST(HostInterface, IsThatOfTheClientsVersion) {
    const struct {
        HostProgram program;
        int answer;
    } rows[] = {
        {program("ts3client_win64.exe", 3, 3, 2), 23},
        {program("ts3client_win64.exe", 3, 5, 6), 23},
        {program("ts3client_win64.exe", 3, 6, 0), 26},
        {program("ts3client_win64.exe", 3, 6, 2), 26},
        {program("ts3client_win64.exe", 3, 10, 0), 26},
        {program("ts3client_win64.exe", 4, 0, 0), 26},
        {program("TS3Client_Win64.EXE", 3, 6, 2), 26},
        {program("ts3client.exe", 3, 6, 0), 26},
        {program("ts3client_win64.exe", 2, 9, 0), 23},
        {program("ts3client_win64.exe", 0, 0, 0), 23},
        {program("other.exe", 3, 6, 2), 23},
        {program("myts3client.exe", 3, 6, 2), 23},
        {program("ts3clien.exe", 3, 6, 2), 23},
        {program("", 3, 6, 2), 23},
        {{"ts3client_win64.exe", std::nullopt}, 23},
        {{}, 23},
    };
    for (const auto& row : rows)
        EXPECT_EQ(chooseHostInterface(row.program, "").version, row.answer) << row.program.fileName;
}

TEST(HostInterface, IsWhatTheUsersFileSays) {
    const auto client = program("ts3client_win64.exe", 3, 6, 2);
    const struct {
        const char* text;
        int answer;
    } rows[] = {{"23", 23},
                {"24\n", 24},
                {"27\r\nfor the next client", 27},
                {" 99 \n", 99},
                {"\xEF\xBB\xBF"
                 "25",
                 25},
                {"26", 26}};
    for (const auto& row : rows) {
        EXPECT_EQ(chooseHostInterface(client, row.text).version, row.answer) << row.text;
        EXPECT_EQ(chooseHostInterface({}, row.text).version, row.answer) << row.text;
        EXPECT_EQ(chooseHostInterface({}, row.text).why, "set in host_api.txt");
    }
}

TEST(HostInterface, IgnoresAnythingElseInTheUsersFile) {
    for (const char* text : {"", "\n26", "22", "100", "0", "-26", "+26", "26.0", "26 27", "26x", "x26", "0x1A", "2 6",
                             "99999999999999999999",
                             "\xFF\xFE"
                             "26"}) {
        EXPECT_EQ(chooseHostInterface(program("ts3client_win64.exe", 3, 6, 2), text).version, 26) << text;
        EXPECT_EQ(chooseHostInterface(program("ts3client_win64.exe", 3, 5, 6), text).version, 23) << text;
    }
}

TEST(HostInterface, SaysWhy) {
    EXPECT_EQ(hostInterfaceLine(chooseHostInterface(program("ts3client_win64.exe", 3, 6, 2), "")),
              "answers interface version 26: ts3client_win64.exe 3.6.2");
    EXPECT_EQ(hostInterfaceLine(chooseHostInterface({"tool.exe", std::nullopt}, "")),
              "answers interface version 23: tool.exe without a version");
    EXPECT_EQ(hostInterfaceLine(chooseHostInterface({}, "")),
              "answers interface version 23: unknown program without a version");
    EXPECT_EQ(hostInterfaceLine(chooseHostInterface({}, "27")), "answers interface version 27: set in host_api.txt");
}

TEST(HostInterface, IsFoundInTheDataFolderWhoseFileIsReadNoFurtherThanItsBeginning) {
    MemoryFiles files;
    EXPECT_EQ(findHostInterface({}, files, "C:\\Data").version, 23);
    files.put("C:\\Data\\host_api.txt", "27\n" + std::string(10'000'000, 'x'));
    EXPECT_EQ(findHostInterface({}, files, "C:\\Data").version, 27);
    EXPECT_LE(files.mostRead, 4096U);
}
