// voice_threads_win.h - the voice state of each of the host's audio threads, which we neither start nor end.
// A fiber-local slot holds it: looking it up is no system call, the state goes when its thread ends, and giving the
// slot back frees the states of the threads that live on, so none of them calls into the DLL after its unload.
#pragma once
#include "audio/voice_hooks.h"

// At the DLL's load and at its unload, under the loader lock. Without a slot (the system has run out of them) voices
// pass unedited. No hook runs during or after the second.
void openVoiceThreads();
void closeVoiceThreads();

// [audio] The hooks, with the state of the calling thread. It is made with the thread's first edited block; when there
// is no memory for it the block stays as it came.
void editCapturedVoiceHere(const VoiceControls& controls, short* samples, int sampleCount, int channels, int* edited);
void editPlaybackVoiceHere(const VoiceControls& controls, SpeakerKey speaker, short* samples, int sampleCount,
                           int channels);
