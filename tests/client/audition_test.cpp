// audition_test.cpp - tools/audition's program does to a file what the plugin does to a voice; in stereo, too.
#include <cstring>
#include "tests/client/client_session_win.h"
#include "tests/simulator/program_win.h"
#include "tests/unit/audio/voice_blocks.h"

namespace {

constexpr std::uint32_t kPatienceMs = 30'000;
constexpr int kHostFrames = 960;  // 20 ms

std::string bytesOf(const std::vector<short>& samples) {
    std::string bytes(samples.size() * sizeof(short), '\0');
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

}  // namespace

class Audition : public PluginTest {
  protected:
    // Runs the clip through the program and through the plugin's hook, block by block as a host does.
    void expectSame(const std::vector<short>& clip, int channels, const std::wstring& side) {
        const auto in = session.machine.path / "in.raw", out = session.machine.path / "out.raw";
        ASSERT_TRUE(writeFile(in, bytesOf(clip)));
        const std::wstring files = L'"' + in.wstring() + L"\" \"" + out.wstring() + L"\" ";
        const std::wstring trace = L" \"" + (session.machine.path / "trace.csv").wstring() + L"\" ";
        standin::Program program;
        ASSERT_TRUE(
            program.start(standin::besideUs(L"audition_chain.exe", files + std::to_wstring(channels) + trace + side)));
        ASSERT_EQ(program.waitForEnd(kPatienceMs), 0u);
        std::vector<short> heard = clip;
        const int frames = static_cast<int>(clip.size()) / channels;
        for (int at = 0; at < frames; at += kHostFrames) {
            short* const block = heard.data() + std::ptrdiff_t{at} * channels;
            const int count = std::min(kHostFrames, frames - at);
            const PluginExports& plugin = session.plugin.exports();
            if (side == L"--received")
                plugin.onEditPlaybackVoiceDataEvent(kSchid, kOtherClient, block, count, channels);
            else
                plugin.onEditCapturedVoiceDataEvent(kSchid, block, count, channels, nullptr);
        }
        EXPECT_NE(bytesOf(heard), bytesOf(clip));
        EXPECT_EQ(readFile(out), bytesOf(heard)) << channels << " channels";
    }
};

// Before init the hooks have the default switches, which are the program's: the radio both ways, every gain 1.
TEST_F(Audition, SoundsAsThePluginDoesInMonoAndInStereo) {
    for (const int channels : {1, 2}) {
        for (const wchar_t* side : {L"--received", L"--own"}) {
            ASSERT_TRUE(session.load());  // with fresh voices
            expectSame(VoiceBlocks(5).take(Sound::kSpeech, (3 * kHostFrames + 100) * channels), channels, side);
            session.plugin.unload();
        }
    }
}
