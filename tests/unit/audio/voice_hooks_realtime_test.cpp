// voice_hooks_realtime_test.cpp - what the hooks must not do on an audio thread: allocate, lock, call the system. The
// watchers replace C library functions, so they only exist where no sanitizer does the same.
#include <gtest/gtest.h>
#include <vector>
#include "audio/capture_mode.h"
#include "audio/voice_hooks.h"
#include "tests/unit/audio/voice_blocks.h"

#if defined(__linux__) && !defined(CORVALIS_SANITIZED)
#include <dlfcn.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace {

enum class Watch {
    kOff,
    kAbort,   // an allocation, a release or a lock ends the process
    kRefuse,  // there is no memory
};
thread_local Watch gWatch = Watch::kOff;

void forbid() {
    if (gWatch == Watch::kAbort) std::abort();
}
bool isRefused() {
    forbid();
    return gWatch == Watch::kRefuse;
}

class Watched {
  public:
    explicit Watched(Watch watch) { gWatch = watch; }
    ~Watched() { gWatch = Watch::kOff; }
};

}  // namespace

// These replace the C library's in this whole program.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) {
    return isRefused() ? nullptr : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    return isRefused() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    return isRefused() ? nullptr : __libc_realloc(memory, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return isRefused() ? nullptr : __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = aligned_alloc(alignment, size);
    return *memory ? 0 : ENOMEM;
}
void free(void* memory) {
    forbid();
    __libc_free(memory);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    static const auto real = reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    forbid();
    return real(mutex);
}
int pthread_mutex_trylock(pthread_mutex_t* mutex) {
    static const auto real = reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_trylock"));
    forbid();
    return real(mutex);
}
int pthread_spin_lock(pthread_spinlock_t* lock) {
    static const auto real = reinterpret_cast<int (*)(pthread_spinlock_t*)>(dlsym(RTLD_NEXT, "pthread_spin_lock"));
    forbid();
    return real(lock);
}
int pthread_rwlock_wrlock(pthread_rwlock_t* lock) {
    static const auto real = reinterpret_cast<int (*)(pthread_rwlock_t*)>(dlsym(RTLD_NEXT, "pthread_rwlock_wrlock"));
    forbid();
    return real(lock);
}
int pthread_rwlock_rdlock(pthread_rwlock_t* lock) {
    static const auto real = reinterpret_cast<int (*)(pthread_rwlock_t*)>(dlsym(RTLD_NEXT, "pthread_rwlock_rdlock"));
    forbid();
    return real(lock);
}
}

namespace {

// A thread's hooks with everything that they will edit, made in advance.
struct AudioThreadModel {
    AudioThreadModel() {
        VoiceBlocks source(21);
        for (int i = 0; i < 40; i++) blocks.push_back(source.takeAny());
        for (std::uint32_t sound = 0; sound < static_cast<std::uint32_t>(Sound::kCount); sound++)
            sounds.push_back(source.take(static_cast<Sound>(sound), 960));
    }
    // Every switch, mode and channel count over 16 speakers, with a new generation now and then.
    void run(int rounds) {
        for (int i = 0; i < rounds; i++) {
            VoiceControls controls;
            controls.audioFlags = static_cast<std::uint32_t>(i * 7) % 32 | kAudioMaster;
            controls.captureMode = i % 3;
            controls.transmitGain = i % 2 ? 2.0f : 1.0f;
            controls.receiveGain = 0.75f;
            controls.dspGeneration = static_cast<std::uint32_t>(i / 50);
            std::vector<short>& block = blocks[static_cast<std::size_t>(i) % blocks.size()];
            const int n = static_cast<int>(block.size());
            int edited = 0;
            editCapturedVoice(captured, controls, block.data(), n, 1 + i % 2, &edited);
            editPlaybackVoice(playback, controls, speakerKey(1, static_cast<std::uint16_t>(i % 16)), block.data(), n,
                              1 + i % 3);
        }
    }

    // Every switch with every other, over each sound, mono and stereo, in each capture mode, and each time a new
    // generation.
    void runEachSwitch() {
        VoiceControls controls;
        controls.transmitGain = 2.0f;
        controls.receiveGain = 0.5f;
        for (controls.audioFlags = 0; controls.audioFlags < 32; controls.audioFlags++) {
            for (std::vector<short>& block : sounds) {
                for (const int channels : {1, 2}) {
                    controls.dspGeneration++;
                    controls.captureMode = static_cast<std::int32_t>(controls.dspGeneration % 3);
                    controls.marksEdited = controls.dspGeneration % 2 == 0;
                    const int n = static_cast<int>(block.size());
                    int edited = 0;
                    editCapturedVoice(captured, controls, block.data(), n, channels, &edited);
                    editPlaybackVoice(playback, controls, speakerKey(1, 1), block.data(), n, channels);
                }
            }
        }
    }
    // One block of each of these speakers, heard with everything on.
    void hear(std::uint16_t first, std::uint16_t last) {
        VoiceControls controls;
        controls.audioFlags = 31;
        for (std::uint16_t client = first; client <= last; client++) {
            std::vector<short>& block = blocks[client % blocks.size()];
            editPlaybackVoice(playback, controls, speakerKey(1, client), block.data(), static_cast<int>(block.size()),
                              1 + client % 2);
        }
    }

    CapturedVoice captured;
    PlaybackVoices playback;
    std::vector<std::vector<short>> blocks;
    std::vector<std::vector<short>> sounds;  // one of each
};

// Runs body in a child process that may only exit; returns how it ended, as in waitpid. -1: no such mode here.
template <class Body>
int runWithoutSystem(Body body) {
    constexpr int kNoMode = 99;
    const pid_t child = fork();
    if (child == 0) {
        if (prctl(PR_SET_SECCOMP, 1 /* SECCOMP_MODE_STRICT */) != 0) _exit(kNoMode);
        body();
        syscall(SYS_exit, 0);  // the one way out that the mode allows
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == kNoMode ? -1 : status;
}

}  // namespace

TEST(VoiceHooksRealtime, AllocateReleaseAndLockNothingOnceWarm) {
    AudioThreadModel thread;
    thread.run(100);
    const Watched watched(Watch::kAbort);
    thread.run(3000);
}

TEST(VoiceHooksRealtime, AllocateReleaseAndLockNothingWithAnySwitchOrSoundMonoOrStereo) {
    AudioThreadModel thread;
    thread.hear(1, 1);
    const Watched watched(Watch::kAbort);
    thread.runEachSwitch();
}

TEST(VoiceHooksRealtime, AllocateReleaseAndLockNothingForANewSpeakerOnceAnybodyHasBeenHeard) {
    AudioThreadModel thread;
    thread.hear(1, 1);
    {
        const Watched watched(Watch::kAbort);
        thread.hear(2, kSpareSpeakers);
    }
    EXPECT_EQ(thread.playback.speakers.size(), kSpareSpeakers);
    thread.hear(kSpareSpeakers + 1, kSpareSpeakers + 1);  // beyond those made in advance, there is memory for one
    EXPECT_EQ(thread.playback.speakers.size(), kSpareSpeakers + 1);
    const Watched watched(Watch::kAbort);
    thread.hear(1, kSpareSpeakers + 1);
}

TEST(VoiceHooksRealtime, AllocateReleaseAndLockNothingWhenTheTableStartsAfresh) {
    AudioThreadModel thread;
    const std::uint16_t most = kMaxHeardSpeakers + 1;
    thread.hear(1, most);
    ASSERT_EQ(thread.playback.speakers.size(), most);
    const Watched watched(Watch::kAbort);
    thread.hear(most + 1, 3 * most);
}

TEST(VoiceHooksRealtimeDeathTest, WatcherEndsAnAllocationAReleaseAndALock) {
    static void* memory = std::malloc(8);
    static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    const auto watching = [](void (*body)()) {
        const Watched watched(Watch::kAbort);
        body();
    };
    EXPECT_EXIT(watching([] { memory = ::operator new(100); }), ::testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(watching([] { std::free(memory); }), ::testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(watching([] { pthread_mutex_lock(&mutex); }), ::testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(watching([] { pthread_mutex_trylock(&mutex); }), ::testing::KilledBySignal(SIGABRT), "");
    AudioThreadModel thread;  // the first speaker does allocate
    EXPECT_EXIT(
        {
            const Watched watched(Watch::kAbort);
            thread.run(1);
        },
        ::testing::KilledBySignal(SIGABRT), "");
}

TEST(VoiceHooksRealtime, CallTheSystemForNothingOnceWarm) {
    AudioThreadModel thread;
    thread.run(100);
    const int status = runWithoutSystem([&] { thread.run(600); });
    if (status == -1) GTEST_SKIP() << "this kernel offers no seccomp strict mode";
    EXPECT_EQ(status, 0) << "the child was killed by signal " << WTERMSIG(status);
    EXPECT_EQ(runWithoutSystem([] { syscall(SYS_getpid); }), SIGKILL);  // the mode does prevent calls
}

TEST(VoiceHooksRealtime, CallTheSystemForNothingWithAnySwitchOrSoundNorForANewSpeaker) {
    AudioThreadModel thread;
    thread.hear(1, 1);
    const int status = runWithoutSystem([&] {
        thread.runEachSwitch();
        thread.hear(2, kSpareSpeakers);
    });
    if (status == -1) GTEST_SKIP() << "this kernel offers no seccomp strict mode";
    EXPECT_EQ(status, 0) << "the child was killed by signal " << WTERMSIG(status);
}

TEST(VoiceHooksRealtime, LeaveANewSpeakersBlockAsItCameWithoutMemory) {
    AudioThreadModel thread;
    VoiceControls controls;
    controls.audioFlags = 31;
    std::vector<short> block(960, 5000);
    const std::vector<short> before = block;
    {
        const Watched watched(Watch::kRefuse);
        editPlaybackVoice(thread.playback, controls, 1, block.data(), 960, 1);
    }
    EXPECT_EQ(block, before);
    EXPECT_TRUE(thread.playback.speakers.empty());
    editPlaybackVoice(thread.playback, controls, 1, block.data(), 960, 1);  // there is memory again
    EXPECT_NE(block, before);
}

TEST(VoiceHooksRealtime, GoOnWithKnownSpeakersWithoutMemory) {
    AudioThreadModel refused, plenty;
    refused.run(64);
    plenty.run(64);
    {
        const Watched watched(Watch::kRefuse);
        refused.run(500);
    }
    plenty.run(500);
    EXPECT_EQ(refused.blocks, plenty.blocks);
}

#else

TEST(VoiceHooksRealtime, IsWatchedInTheNativeBuildOnly) {
    GTEST_SKIP() << "a sanitizer, or another system's C library, stands where the watchers of allocations would";
}

#endif
