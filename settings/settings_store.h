// settings_store.h - the one live Settings record, its file, and what the audio threads read of it.
// Locks: fileMutex is taken first and mutex inside it; mutex is held for a copy, an assignment or the publication,
// fileMutex for the file work of a save or a load. Lines for the log are handed over when neither is held.
#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include "base/data_files.h"
#include "base/mutex.h"
#include "settings/settings.h"

enum AudioFlag : std::uint32_t {
    kAudioMaster = 1,
    kAudioDistortSelf = 2,
    kAudioDistortOthers = 4,
    kAudioNrSelf = 8,
    kAudioEqualize = 16,
};

// The switches of a record as AudioFlag bits.
std::uint32_t audioFlagsOf(const Settings& settings);
// transmit_gain as a linear factor: 10^(dB / 20), 1.0 at 0 dB.
float transmitGainOf(const Settings& settings);

inline constexpr const char* kSettingsFile = "settings.ini";
inline constexpr const char* kSettingsBackup = "settings.bak";  // a settings.ini that could not be read

// A tick that never comes: the file follows with the next save.
inline constexpr std::uint64_t kNoSaveDue = 0;

struct SettingsStore {
    using LogLine = std::function<void(std::string_view)>;                             // [any]
    using Changed = std::function<void(const Settings& before, const Settings& now)>;  // [any]
    explicit SettingsStore(DataFiles& dataFiles, LogLine log = {}, Changed change = {})
        : files(dataFiles), logLine(std::move(log)), onChanged(std::move(change)) {}

    Mutex fileMutex;  // [any] serialises loads and saves; guards the folders
    Mutex mutex;      // [any] guards the live record
    Settings live GUARDED_BY(mutex);
    std::string dataFolder GUARDED_BY(fileMutex);    // where settings.ini is read and written
    std::string moduleFolder GUARDED_BY(fileMutex);  // the older place it is read from; may be empty
    SetAside unread GUARDED_BY(fileMutex);  // where the next save puts a settings.ini that could not be read at load
    bool isHalfLoaded GUARDED_BY(fileMutex) = false;     // a load was left for want of memory: settings.ini is unread
    bool isFailureLogged GUARDED_BY(fileMutex) = false;  // a save has failed since the last load
    bool isLoaded GUARDED_BY(fileMutex) = false;         // by a first load, however it ended
    DataFiles& files;
    const LogLine logLine;  // may be empty
    // Told of each change of the live record, also by a load, on the thread that makes it and before the file is
    // written; may be empty. fileMutex may be held: it may copy the settings, must not change them, and waits for
    // nothing.
    const Changed onChanged;

    // The file's arrears. Set after a change of the live record and cleared before a save copies it, so that no change
    // is forgotten; a save too many is the worst.
    std::atomic<bool> isUnsaved{false};
    std::atomic<std::uint64_t> saveDueMs{kNoSaveDue};  // tick

    // Published for the audio threads, which take no lock. The first two are stored by applySettings.
    std::atomic<std::uint32_t> AudioFlags{kAudioMaster | kAudioDistortSelf | kAudioDistortOthers};
    std::atomic<float> TransmitGain{1.0f};        // linear, 1.0..7.94
    std::atomic<std::uint32_t> DspGeneration{0};  // +1 when any of the five switches is published as another
};

// [any] A copy of the live record, taken under its mutex.
Settings copySettings(SettingsStore& store);

// [host] Where the file is from now on.
void setSettingsFolders(SettingsStore& store, const std::string& dataFolder, const std::string& moduleFolder);

// How reading the file in the data folder ended.
struct SettingsLoad : FileResult {
    bool isLiveKept = false;  // the live record of before stands, and whatever of it is not saved yet
};

// [host] Resets the live record to the defaults and reads settings.ini into it: from the data folder, else from the
// module folder. Without a file the defaults stand. What cannot be read to its end is read as far as possible the first
// time; a later load leaves the live record as it is then. The first save afterwards moves the file to settings.bak.
SettingsLoad loadSettings(SettingsStore& store);

// What the log says of that; empty if there is nothing to say.
std::string unreadSettingsLine(const SettingsLoad& loaded);

// [any] Makes record the live one, writes it to settings.ini and publishes it. If it cannot be written the old file
// stays as it was; the first failure since the last load is logged.
void saveSettings(SettingsStore& store, const Settings& record);

// [any] Changes the live record and saves the result as one step, so that the file ends up with the newest record.
void updateSettings(SettingsStore& store, const std::function<void(Settings&)>& change);

// [any] Changes the live record and publishes it at once, for what changes many times in a row. The file follows at
// saveAtMs (a tick, or kNoSaveDue), by saveWhenDue, unless another save comes first. Waits for no file.
void changeSettings(SettingsStore& store, const std::function<void(Settings&)>& change, std::uint64_t saveAtMs);

// [poll] Saves once the tick that changeSettings was given has come.
void saveWhenDue(SettingsStore& store, std::uint64_t nowMs);

// [any] Saves if the file lags behind the live record: after changeSettings, or because a save has failed. A file that
// another program holds is waited for up to patienceMs; 0: three tries.
void savePendingSettings(SettingsStore& store, std::uint32_t patienceMs = kKeptPatienceMs);

// [any] Publishes AudioFlags and TransmitGain of the live record, and a new DspGeneration when the flags are others
// than those published last: also at a start that finds another file than the end before it left.
void applySettings(SettingsStore& store);
