// voice_test.h - a session whose voice hooks are compared with the plain ones: settings in, controls out.
#pragma once
#include <string>
#include "audio/volume_policy.h"
#include "settings/settings_text.h"
#include "tests/client/client_session_win.h"
#include "tests/reference/plain_voice_hooks.h"

class VoiceTest : public PluginTest {
  protected:
    // Starts the plugin with these lines; returns what they ask of the hooks. The poll loop sets the receive gain in
    // its first pass and the capture mode after that: until then they are 1.0 and 1.
    VoiceControls startWith(const std::string& lines) {
        EXPECT_TRUE(session.writeSettings(lines));
        EXPECT_TRUE(session.start());
        const Settings settings = readSettingsText(lines);
        VoiceControls controls;
        controls.audioFlags = audioFlagsOf(settings);
        controls.transmitGain = transmitGainOf(settings);
        controls.receiveGain = receiveGainOf(settings, -1.0f);
        // Other switches than the plugin had before, if only by default: every voice starts afresh.
        if (publishedFlags_ != controls.audioFlags) generation_++;
        publishedFlags_ = controls.audioFlags;
        controls.dspGeneration = generation_;
        return controls;
    }
    // The same, after the poll loop's first passes.
    VoiceControls start(const std::string& lines, std::int32_t captureMode = 1) {
        VoiceControls controls = startWith(lines);
        EXPECT_TRUE(session.waitPasses(2));
        controls.captureMode = captureMode;
        return controls;
    }
    const PluginExports& plugin() const { return session.plugin.exports(); }

  private:
    std::uint32_t publishedFlags_ = audioFlagsOf({});  // of the DLL as loaded
    std::uint32_t generation_ = 0;
};
