#include "worker/user_names.h"
#include <gtest/gtest.h>

namespace {

const std::vector<std::string> kNobody;

struct Row {
    const char* line;
    const char* masked;
};

void expectMasked(const std::vector<Row>& rows, const std::vector<std::string>& names) {
    for (const auto& row : rows) EXPECT_EQ(maskUserNames(row.line, names), row.masked) << row.line;
}

}  // namespace

TEST(UserNames, AreMaskedBehindTheFolderOfAllUsers) {
    expectMasked(
        {
            {"C:\\Users\\jane\\AppData\\Roaming\\Corvalis", "C:\\Users\\<user>\\AppData\\Roaming\\Corvalis"},
            {"C:/Users/jane/AppData", "C:/Users/<user>/AppData"},
            {"c:\\uSERS\\jane\\x", "c:\\uSERS\\<user>\\x"},
            {"{\"path\":\"C:\\\\Users\\\\jane\\\\x\"}", "{\"path\":\"C:\\\\Users\\\\<user>\\\\x\"}"},
            {"file:///C:/Users/Jane%20Doe/x", "file:///C:/Users/<user>/x"},
            {"\\\\?\\C:\\Users\\jane\\x", "\\\\?\\C:\\Users\\<user>\\x"},
            {"\\\\server\\Users\\jane\\x", "\\\\server\\Users\\<user>\\x"},
            {"C:Users\\jane\\x", "C:Users\\<user>\\x"},
            {"Users\\jane\\x", "Users\\<user>\\x"},
            {"/home/jane/x", "/home/<user>/x"},
            {"Z:\\home\\jane\\x", "Z:\\home\\<user>\\x"},
            {"/HOME/jane", "/HOME/<user>"},
            {"C:\\Documents and Settings\\jane\\x", "C:\\Documents and Settings\\<user>\\x"},
            {"two: C:\\Users\\a\\x and C:\\Users\\b\\y", "two: C:\\Users\\<user>\\x and C:\\Users\\<user>\\y"},
            {"C:\\Users\\a\\Users\\b\\y", "C:\\Users\\<user>\\Users\\<user>\\y"},
        },
        kNobody);
}

TEST(UserNames, OfEveryKindAreMaskedWhole) {
    for (const std::string name : {"Jane Doe", "J\xC3\xBCrgen M\xC3\xBCller", "\xE5\xB0\x8F\xE6\x9E\x97 \xE8\xA1\xA8",
                                   "O'Brien, Pat", "jane.DESKTOP-1", "JANEDO~1", "J?rgen", "???", "(x)", "a;b=c",
                                   "\xD0\x98\xD0\xB2\xD0\xB0\xD0\xBD", "\xFFjane"}) {
        EXPECT_EQ(maskUserNames("folder C:\\Users\\" + name + "\\x, more", kNobody),
                  "folder C:\\Users\\<user>\\x, more");
        EXPECT_EQ(maskUserNames("\"C:\\Users\\" + name + "\" more", kNobody), "\"C:\\Users\\<user>\" more") << name;
        EXPECT_EQ(maskUserNames("in C:/Users/" + name, kNobody), "in C:/Users/<user>") << name;
        EXPECT_EQ(maskUserNames("/home/" + name + ":/x", kNobody), "/home/<user>:/x") << name;
    }
}

TEST(UserNames, WhosePathEndsOpenlyTakeTheRestWithThem) {
    EXPECT_EQ(maskUserNames("data folder C:\\Users\\Jane Doe, watching process 4", {"jane"}),
              "data folder C:\\Users\\<user>");
}

TEST(UserNames, OfTheAccountAreMaskedWhereverTheyArePartOfAPath) {
    expectMasked(
        {
            {"D:\\Games\\jane\\x", "D:\\Games\\<user>\\x"},
            {"D:/Games/JANE/x", "D:/Games/<user>/x"},
            {"D:\\jane", "D:\\<user>"},
            {"D:\\jane, and more", "D:\\<user>, and more"},
            {"script=jane\\a.txt", "script=<user>\\a.txt"},
            {"jane/a.txt", "<user>/a.txt"},
            {"D:\\jane backup\\x", "D:\\<user> backup\\x"},
            {"D:\\jane.old\\x", "D:\\<user>.old\\x"},
            {"D:\\old-jane\\x", "D:\\old-<user>\\x"},
            {"D:\\jane doe\\jane\\x", "D:\\<user>\\<user>\\x"},
            {"E:\\x\\\\jane\\\\y", "E:\\x\\\\<user>\\\\y"},
            {"D:\\J\xC3\x9CRGEN M\xC3\x9CLLER\\x", "D:\\<user>\\x"},
            {"D:\\\xD0\xB8\xD0\xB2\xD0\xB0\xD0\xBD/x", "D:\\<user>/x"},
        },
        {"", "Jane", "Jane Doe", "J\xC3\xBCrgen M\xC3\xBCller", "\xD0\x98\xD0\x92\xD0\x90\xD0\x9D"});
}

TEST(UserNames, LeaveOtherTextsAlone) {
    for (const std::string line : {"",
                                   "jane",
                                   "jane is at work",
                                   "D:\\janet\\x",
                                   "D:\\x\\xjane\\y",
                                   "D:\\jane\xC3\xA9\\x",
                                   "link up: jane",
                                   "a. or .. \\..\\.\\x",
                                   "superusers\\x",
                                   "Users",
                                   "C:\\Users",
                                   "C:\\Users\\",
                                   "homes/x",
                                   "at home, users",
                                   "com1_active\":122800",
                                   "D:\\\xC3\xA9jane\\x",
                                   "C:\\Users\\<user>\\x",
                                   "\\",
                                   "//",
                                   "C:\\Homepage\\x"}) {
        EXPECT_EQ(maskUserNames(line, {"jane", "", ".", "..", "a\\b", "/"}), line);
    }
}

TEST(UserNames, MaskedTwiceAreAsMaskedOnce) {
    const std::vector<std::string> names = {"jane", "user"};
    const auto once = maskUserNames("C:\\Users\\Jane Doe\\x D:\\jane\\y", {"jane"});
    EXPECT_EQ(maskUserNames(once, names), once);
}

TEST(UserNames, CutAndDamagedLinesDoNoHarm) {
    const std::string line = "C:\\Users\\J\xC3\xBCrgen\\x /home/b/ D:\\J\xC3\x9CRGEN\\";
    for (std::size_t length = 0; length <= line.size(); length++) {
        const auto masked = maskUserNames(line.substr(0, length), {"J\xC3\xBCrgen"});
        EXPECT_EQ(masked.find("\xC3\xBCrgen"), std::string::npos) << masked;
    }
    for (std::size_t at = 0; at < line.size(); at++) {
        for (const char bad : {'\xFF', '\0', '\xC3'}) {
            auto damaged = line;
            damaged[at] = bad;
            EXPECT_LE(maskUserNames(damaged, {"J\xC3\xBCrgen", "\xC3", "\xFF"}).size(), 3 * line.size());
        }
    }
}
