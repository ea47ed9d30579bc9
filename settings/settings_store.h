// settings_store.h - the one live Settings record, its file, and what the audio threads read of it.
// Locks: fileMutex is taken first and mutex inside it, the only nesting anywhere; mutex is held for a copy or an
// assignment, fileMutex for the file work of a save or a load.
#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
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

struct SettingsStore {
    explicit SettingsStore(DataFiles& dataFiles) : files(dataFiles) {}

    Mutex fileMutex;  // [any] serialises loads and saves; guards the folders
    Mutex mutex;      // [any] guards the live record
    Settings live GUARDED_BY(mutex);
    std::string dataFolder GUARDED_BY(fileMutex);    // where settings.ini is read and written
    std::string moduleFolder GUARDED_BY(fileMutex);  // the older place it is read from; may be empty
    DataFiles& files;

    // Published for the audio threads, which take no lock. The first two are stored by applySettings.
    std::atomic<std::uint32_t> AudioFlags{kAudioMaster | kAudioDistortSelf | kAudioDistortOthers};
    std::atomic<float> TransmitGain{1.0f};        // linear, 1.0..7.94
    std::atomic<std::uint32_t> DspGeneration{0};  // +1 when any of the five switches is published as another
};

// [any] A copy of the live record, taken under its mutex.
Settings copySettings(SettingsStore& store);

// [host] Where the file is from now on.
void setSettingsFolders(SettingsStore& store, const std::string& dataFolder, const std::string& moduleFolder);

// [host] Resets the live record to the defaults and reads settings.ini into it: from the data folder, else from the
// module folder. Without a file the defaults stand.
void loadSettings(SettingsStore& store);

// [any] Makes record the live one, writes it to settings.ini and publishes it. A failed write is silent: the old file
// stays as it was.
void saveSettings(SettingsStore& store, const Settings& record);

// [any] Changes the live record and saves the result as one step, so that the file ends up with the newest record.
void updateSettings(SettingsStore& store, const std::function<void(Settings&)>& change);

// [any] Publishes AudioFlags and TransmitGain of the live record, and a new DspGeneration when the flags are others
// than those published last: also at a start that finds another file than the end before it left.
void applySettings(SettingsStore& store);
