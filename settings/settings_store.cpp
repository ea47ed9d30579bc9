#include "settings/settings_store.h"
#include <cmath>
#include "settings/settings_text.h"

namespace {

constexpr const char* kSettingsFile = "settings.ini";

Settings changeLive(SettingsStore& store, const std::function<void(Settings&)>& change) {
    MutexLock lock(store.mutex);
    change(store.live);
    return store.live;
}

}  // namespace

std::uint32_t audioFlagsOf(const Settings& settings) {
    std::uint32_t flags = 0;
    if (settings.master) flags |= kAudioMaster;
    if (settings.distort_self) flags |= kAudioDistortSelf;
    if (settings.distort_others) flags |= kAudioDistortOthers;
    if (settings.nrSelf) flags |= kAudioNrSelf;
    if (settings.equalize) flags |= kAudioEqualize;
    return flags;
}

float transmitGainOf(const Settings& settings) {
    return static_cast<float>(std::pow(10.0, static_cast<double>(settings.transmit_gain) / 20.0));
}

Settings copySettings(SettingsStore& store) {
    MutexLock lock(store.mutex);
    return store.live;
}

void setSettingsFolders(SettingsStore& store, const std::string& dataFolder, const std::string& moduleFolder) {
    MutexLock lock(store.fileMutex);
    store.dataFolder = dataFolder;
    store.moduleFolder = moduleFolder;
}

void loadSettings(SettingsStore& store) {
    MutexLock fileLock(store.fileMutex);
    std::string text;
    bool found = store.files.read(joinPath(store.dataFolder, kSettingsFile), text);
    if (!found && !store.moduleFolder.empty())
        found = store.files.read(joinPath(store.moduleFolder, kSettingsFile), text);
    const Settings loaded = found ? readSettingsText(text) : Settings{};
    MutexLock lock(store.mutex);
    store.live = loaded;
}

void saveSettings(SettingsStore& store, const Settings& record) {
    updateSettings(store, [&](Settings& live) { live = record; });
}

void updateSettings(SettingsStore& store, const std::function<void(Settings&)>& change) {
    MutexLock fileLock(store.fileMutex);
    const Settings changed = changeLive(store, change);
    store.files.replace(joinPath(store.dataFolder, kSettingsFile), writeSettingsText(changed));
    applySettings(store);
}

void applySettings(SettingsStore& store) {
    const Settings settings = copySettings(store);
    const std::uint32_t flags = audioFlagsOf(settings);
    const bool isOther = store.AudioFlags.exchange(flags) != flags;
    store.TransmitGain = transmitGainOf(settings);
    // After the switches are published: a voice that sees the new generation starts afresh under them, not before.
    if (isOther) store.DspGeneration.fetch_add(1);
}
