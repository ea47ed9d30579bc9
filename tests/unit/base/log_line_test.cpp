#include "base/log_line.h"
#include <gtest/gtest.h>
#include "base/utf8.h"
#include "tests/client/host_model.h"
#include "tests/unit/fakes.h"

namespace {

// Bytes of one character by its first byte.
std::size_t characterBytes(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte >= 0xF0) return 4;
    if (byte >= 0xE0) return 3;
    return byte >= 0xC0 ? 2 : 1;
}

// Whole characters, one after the other, while they fit.
std::string wholeCharacters(const std::string& text, std::size_t maxBytes) {
    std::string whole;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = characterBytes(text[at]);
        if (whole.size() + bytes > maxBytes) break;
        whole += text.substr(at, bytes);
        at += bytes;
    }
    return whole;
}

}  // namespace

class LogLine : public testing::Test {
  protected:
    ManualClock clock;
    HostModel model{clock};
    HostFunctions host = resolveHostFunctions(model.table());
};

TEST(CutUtf8, NeverCutsInsideACharacterAndKeepsAllThatFit) {
    for (const std::string text : {"plain", "zé", "ü", "数据", "a\xF0\x9F\x9B\xA9z", "aé数\xF0\x9F\x9B\xA9é数a", ""}) {
        for (std::size_t max = 0; max <= text.size() + 2; max++)
            EXPECT_EQ(cutUtf8(text, max), wholeCharacters(text, max)) << text << ' ' << max;
    }
}

TEST(CutUtf8, CutsBytesThatAreNoUtf8WhereTheyStand) {
    const std::string bytes(20, '\x80');
    EXPECT_EQ(cutUtf8(bytes, 10).size(), 10u);
    EXPECT_EQ(cutUtf8(bytes, 0).size(), 0u);
    EXPECT_LE(cutUtf8("\xE6\x95", 1).size(), 1u);
}

TEST_F(LogLine, GoesOutAsInformationOnTheChannelCorvalisWithLogIdZero) {
    logToHost(host, "hello");
    const auto calls = model.callsOf("logMessage");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].text, "hello");
    EXPECT_EQ(calls[0].number, 4u);
    EXPECT_EQ(calls[0].channelText, "Corvalis");
    EXPECT_EQ(calls[0].schid, 0u);
}

TEST_F(LogLine, OfUpTo511BytesIsWholeAndALongerOneIsCutThere) {
    for (const std::size_t bytes : {0u, 1u, 510u, 511u, 512u, 513u, 9000u}) {
        model.forgetCalls();
        logToHost(host, std::string(bytes, 'x'));
        EXPECT_EQ(model.logLines(), std::vector<std::string>{std::string(std::min<std::size_t>(bytes, 511), 'x')})
            << bytes;
    }
}

TEST_F(LogLine, IsNotCutInsideACharacter) {
    std::string folder;
    for (int i = 0; i < 300; i++) folder += "数";  // 900 bytes; 511 = 3 * 170 + 1
    logToHost(host, folder);
    logToHost(host, "a" + folder, 128);
    EXPECT_EQ(model.logLines(), (std::vector<std::string>{folder.substr(0, 510), "a" + folder.substr(0, 126)}));
}

TEST_F(LogLine, IsSkippedWhenTheHostHasNoLog) {
    host.logMessage = nullptr;
    logToHost(host, "hello");
    EXPECT_TRUE(model.calls().empty());
}
