// plugin_life_win.h - one life of the real plugin in a voice client: loaded, started, used in ways drawn at random,
// ended and unloaded. [host] Used from the program's main thread, but for shutDown.
#pragma once
#include <windows.h>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>
#include "base/clock_win.h"
#include "tests/client/circuit/chance.h"
#include "tests/client/circuit/host_crowd_win.h"
#include "tests/client/host_model.h"
#include "tests/client/locked_file_win.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/own_memory_win.h"

// What is beside the DLL: a worker that flies the built-in aircraft, one that never says a word, or none.
enum class WorkerBeside { kFlying, kSilent, kNone };
inline constexpr int kWorkerBesideCount = 3;

// Where the lives take place: %APPDATA% of this process, and a folder for each WorkerBeside with a DLL in it.
class LifePlaces {
  public:
    LifePlaces();
    std::filesystem::path dll(WorkerBeside worker) const;
    std::filesystem::path dataFolder() const { return folder_.path / "Roaming" / "Corvalis"; }
    bool isGood() const { return isGood_; }

  private:
    FreshFolder folder_;
    EnvironmentValue appData_;
    bool isGood_ = true;
};

// What the plugin took of the C runtime's and GDI+'s memory while it was loaded, less what it gave back by its end.
struct MemoryLeft {
    std::int64_t bytes = 0;
    std::int64_t blocks = 0;
};

class PluginLife {
  public:
    PluginLife(Chance& chance, HostCrowd& crowd, const LifePlaces& places);
    ~PluginLife();  // only once unloaded, or never begun
    PluginLife(const PluginLife&) = delete;
    PluginLife& operator=(const PluginLife&) = delete;

    // False with a word in story() when the DLL cannot be loaded.
    bool load();
    void start();        // init
    void doSomething();  // one of the many deeds, none of which waits long
    void wait(int ms);   // while the host's events are delivered
    void shutDown();     // [any]
    // After a shutdown, while the DLL is there: what of the plugin is still at work, in words.
    std::vector<std::string> leftovers();
    void unload();
    // Once unloaded.
    MemoryLeft memoryLeft() const { return {OwnMemory::bytes(), OwnMemory::blocks()}; }

    // Whether that is so; else says what was left, and after what.
    bool leftNothing(const std::vector<std::string>& leftovers) const;

    // What was done, in order: "load flying, dialog, hold panel, ...".
    const std::string& story() const { return story_; }

  private:
    struct Deed {
        const char* name;
        void (PluginLife::*run)();
    };
    static const Deed kDeeds[];

    void writeSettings();
    void writeTelemetry();
    void playVoices();
    void talk();
    void receiveTexts();
    void chooseMenu();
    void toggleMessages();
    void holdMessages();
    void turnMessages();
    void holdPanel();
    void turnKnob();
    void pressKey();
    void swapFrequencies();
    void openDialog();
    void openDialogOnHostThread();
    void workDialog();
    void holdDialog();
    void letGo();
    void hangWorker();
    void killWorker();
    void startAgain();
    void changeTab();
    void lockSettings();
    void comeToFront();
    void pump();
    void tell(const std::string& what) { story_ += (story_.empty() ? "" : ", ") + what; }

    Chance& chance_;
    HostCrowd& crowd_;
    const LifePlaces& places_;
    SystemClock clock_;
    HostModel host_{clock_};
    PluginLibrary plugin_;
    std::optional<OwnMemory> ownMemory_;  // counts while the DLL is loaded
    WorkerBeside worker_ = WorkerBeside::kFlying;
    std::int32_t theme_ = 0;
    std::unique_ptr<LockedFile> locked_;   // settings.ini, held by another program
    std::thread hostThread_;               // runs the dialog
    std::atomic<bool> isInDialog_{false};  // that thread stores
    std::string story_;
};

// The voice client's own main window, as every client has one; on the calling thread. Null if there is none.
HWND makeClientWindow();
