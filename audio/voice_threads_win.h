// voice_threads_win.h - the voice state of each of the host's audio threads, which we neither start nor end.
// A fiber-local slot holds it: looking it up takes no system call, the state is freed when its thread ends, and freeing
// the slot frees the states of the threads that live on, so that none of them calls into the DLL after its unload.
#pragma once
#include "audio/voice_hooks.h"

// At the DLL's load and at its unload, under the loader lock. Without a slot (the system has run out of them) voices
// pass unedited. No hook runs during or after closeVoiceThreads.
void openVoiceThreads();
void closeVoiceThreads();

// [audio] The hooks, with the state of the calling thread. That state is made with the thread's first edited block;
// when there is no memory for it, the block stays unchanged.
void editCapturedVoiceHere(const VoiceControls& controls, short* samples, int sampleCount, int channels, int* edited);
void editPlaybackVoiceHere(const VoiceControls& controls, SpeakerKey speaker, short* samples, int sampleCount,
                           int channels);
