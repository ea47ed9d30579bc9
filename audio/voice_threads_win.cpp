#include "audio/voice_threads_win.h"
#include <windows.h>
#include <memory>
#include <new>

namespace {

struct VoiceThread {
    CapturedVoice captured;
    PlaybackVoices playback;
};

DWORD gSlot = FLS_OUT_OF_INDEXES;  // written under the loader lock, when no hook can run

// Called on the thread that ends, or on the one that frees the slot.
void WINAPI dropVoiceThread(void* state) {
    delete static_cast<VoiceThread*>(state);
}

// Null when memory has run out.
VoiceThread* makeVoiceThread() noexcept try {
    auto thread = std::make_unique<VoiceThread>();
    return FlsSetValue(gSlot, thread.get()) ? thread.release() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

VoiceThread* voiceThreadHere() {
    if (gSlot == FLS_OUT_OF_INDEXES) return nullptr;
    if (void* const state = FlsGetValue(gSlot)) return static_cast<VoiceThread*>(state);
    return makeVoiceThread();
}

}  // namespace

void openVoiceThreads() {
    gSlot = FlsAlloc(dropVoiceThread);
}

void closeVoiceThreads() {
    if (gSlot != FLS_OUT_OF_INDEXES) FlsFree(gSlot);
    gSlot = FLS_OUT_OF_INDEXES;
}

void editCapturedVoiceHere(const VoiceControls& controls, short* samples, int sampleCount, int channels, int* edited) {
    if (!isVoiceEdited(controls, samples, sampleCount)) return;
    if (VoiceThread* const thread = voiceThreadHere())
        editCapturedVoice(thread->captured, controls, samples, sampleCount, channels, edited);
}

void editPlaybackVoiceHere(const VoiceControls& controls, SpeakerKey speaker, short* samples, int sampleCount,
                           int channels) {
    if (!isVoiceEdited(controls, samples, sampleCount)) return;
    if (VoiceThread* const thread = voiceThreadHere())
        editPlaybackVoice(thread->playback, controls, speaker, samples, sampleCount, channels);
}
