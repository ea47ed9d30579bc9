// voice_stack_test.cpp - how much of the host's stack a voice hook of the real DLL takes. Hosts give their audio
// threads little of it, and it must be there in one piece.
#include <windows.h>
#include <algorithm>
#include <cstdint>
#include <thread>
#include "tests/client/client_session_win.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

constexpr std::size_t kMostBytes = 24 * 1024;
constexpr std::size_t kPaintedBytes = 200 * 1024;
constexpr unsigned char kPaint = 0xA5;

// The stack between the lowest byte that may be used and where this frame is. Its own frame and the caller's are small.
[[gnu::noinline]] unsigned char* here() {
    volatile unsigned char mark = 0;
    const auto address = reinterpret_cast<std::uintptr_t>(&mark);
    return reinterpret_cast<unsigned char*>(address);
}

// Paints what lies below the caller's frame. The system adds pages to a stack one after the other from the top, hence
// downwards; the margin keeps clear of this function's own frame.
[[gnu::noinline]] void paintBelow(unsigned char* top) {
    constexpr std::size_t kMargin = 512;
    for (std::size_t depth = kMargin; depth < kPaintedBytes; depth++)
        *const_cast<volatile unsigned char*>(top - depth) = kPaint;
}

// How far down somebody has painted over it since.
[[gnu::noinline]] std::size_t deepestBelow(const unsigned char* top) {
    std::size_t depth = kPaintedBytes - 1;
    while (depth > 0 && *const_cast<const volatile unsigned char*>(top - depth) == kPaint) depth--;
    return depth;
}

template <class Call>
std::size_t stackOf(Call call) {
    unsigned char* const top = here();
    paintBelow(top);
    call();
    return deepestBelow(top);
}

// Below the painted top a call takes at least this much.
[[gnu::noinline]] void takeTenKilobytes() {
    volatile unsigned char bytes[10 * 1024];
    for (volatile unsigned char& byte : bytes) byte = 1;
}

struct Depths {
    std::size_t deepest = 0;
    std::size_t known = 0;  // of a call that takes a known amount
};

// On a thread of the host's, in blocks as hosts hand them over and longer ones; the first ones make the voices' states.
Depths measureHooks(const PluginExports& plugin) {
    Depths depths;
    VoiceBlocks source(3);
    for (int round = 0; round < 6; round++) {
        for (const int channels : {1, 2}) {
            std::vector<short> block = source.take(Sound::kSpeech, round % 2 == 0 ? 960 : 4000);
            const int n = static_cast<int>(block.size());
            int edited = 0;
            const std::size_t played =
                stackOf([&] { plugin.onEditPlaybackVoiceDataEvent(kSchid, kOtherClient, block.data(), n, channels); });
            const std::size_t captured =
                stackOf([&] { plugin.onEditCapturedVoiceDataEvent(kSchid, block.data(), n, channels, &edited); });
            depths.deepest = std::max({depths.deepest, played, captured});
        }
    }
    depths.known = stackOf([] { takeTenKilobytes(); });
    return depths;
}

}  // namespace

using VoiceStack = PluginTest;

TEST_F(VoiceStack, OfAHookIsAtMost24KilobytesWhateverIsSwitchedOn) {
    const char* const kSwitches[] = {"nrSelf=1\r\nequalize=1\r\ntransmit_gain=6\r\n",  // the radio behind the reduction
                                     "distort_self=0\r\ndistort_others=0\r\nnrSelf=1\r\n", ""};
    std::size_t most = 0;
    for (const char* lines : kSwitches) {
        ASSERT_TRUE(session.writeSettings(lines));
        ASSERT_TRUE(session.start());
        Depths depths;
        std::thread audio([&] { depths = measureHooks(session.plugin.exports()); });
        audio.join();
        session.stop();
        EXPECT_LE(depths.deepest, kMostBytes) << lines;
        EXPECT_GT(depths.deepest, 1024u) << lines;  // something was seen
        EXPECT_GE(depths.known, 10u * 1024);
        EXPECT_LE(depths.known, 12u * 1024);
        most = std::max(most, depths.deepest);
    }
    RecordProperty("bytes", static_cast<int>(most));  // for --gtest_output=xml
}
