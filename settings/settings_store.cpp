#include "settings/settings_store.h"
#include <cmath>
#include <optional>
#include "base/clock.h"
#include "settings/settings_text.h"

namespace {

constexpr std::uint64_t kSaveAtOnce = 1;  // a tick that has come

// Without memory nothing is changed.
void changeLive(SettingsStore& store, const std::function<void(Settings&)>& change) {
    Settings before, now;
    {
        MutexLock lock(store.mutex);
        before = store.live;
        Settings next = before;
        change(next);
        now = next;
        store.live = std::move(next);
    }
    if (store.onChanged) store.onChanged(before, now);
}

// What a save has to tell the log.
struct SaveReport {
    std::string asideName;               // what settings.ini is called now that could not be read; mostly empty
    std::optional<std::uint32_t> error;  // of the first save that failed

    void tell(const SettingsStore& store) const {
        if (!store.logLine) return;
        if (!asideName.empty()) store.logLine("Corvalis keeps the settings.ini it could not read as " + asideName);
        if (error) store.logLine("Corvalis cannot save settings.ini (error " + std::to_string(*error) + ")");
    }
};

FileResult writeLive(SettingsStore& store, std::uint32_t patienceMs) REQUIRES(store.fileMutex) {
    const std::string text = writeSettingsText(copySettings(store));
    if (store.isHalfLoaded) store.unread.wantedPath = joinPath(store.dataFolder, kSettingsBackup);
    store.isHalfLoaded = false;
    return store.files.replaceKept(joinPath(store.dataFolder, kSettingsFile), text, store.unread, patienceMs);
}

SaveReport saveLive(SettingsStore& store, std::uint32_t patienceMs) REQUIRES(store.fileMutex) {
    store.saveDueMs = kNoSaveDue;
    store.isUnsaved = false;
    FileResult saved;
    try {
        saved = writeLive(store, patienceMs);
    } catch (...) {  // mostly no memory: the file lags behind until the next pass finds some
        store.isUnsaved = true;
        store.saveDueMs = kSaveAtOnce;
        throw;
    }
    SaveReport report;
    report.asideName = std::exchange(store.unread.path, {});
    report.asideName.erase(0, report.asideName.rfind('\\') + 1);  // without a folder, 0
    if (saved) return report;
    store.isUnsaved = true;
    if (!store.isFailureLogged) report.error = saved.error;
    store.isFailureLogged = true;
    return report;
}

// Publishes the live record at the end of its scope, also when that is left for want of memory.
class Publication {
  public:
    explicit Publication(SettingsStore& store) : store_(store) {}
    ~Publication() { applySettings(store_); }
    Publication(const Publication&) = delete;
    Publication& operator=(const Publication&) = delete;

  private:
    SettingsStore& store_;
};

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

SettingsLoad loadSettings(SettingsStore& store) {
    MutexLock fileLock(store.fileMutex);
    store.isHalfLoaded = true;  // until the end: whatever comes in between, no save writes over what was not read
    std::string text;
    const FileResult found = store.files.readKept(joinPath(store.dataFolder, kSettingsFile), text);
    const bool isUnread = !found && found.state != FileState::kMissing;
    store.unread = {};
    if (isUnread) store.unread.wantedPath = joinPath(store.dataFolder, kSettingsBackup);
    store.isFailureLogged = false;
    if (std::exchange(store.isLoaded, true) && isUnread) {
        store.isHalfLoaded = false;
        return {found, true};
    }
    if (isUnread) text.resize(text.rfind('\n') + 1);  // the whole lines; without any, 0
    if (!found && text.empty() && !store.moduleFolder.empty())
        store.files.read(joinPath(store.moduleFolder, kSettingsFile), text);
    store.saveDueMs = kNoSaveDue;
    store.isUnsaved = false;
    const Settings loaded = readSettingsText(text);
    changeLive(store, [&](Settings& live) { live = loaded; });
    store.isHalfLoaded = false;
    return {found, false};
}

std::string unreadSettingsLine(const SettingsLoad& loaded) {
    if (loaded || loaded.state == FileState::kMissing) return {};
    return "Corvalis cannot read settings.ini (error " + std::to_string(loaded.error) +
           (loaded.isLiveKept ? "); the settings stay as they are" : "); what could not be read has its default") +
           ", and the next save keeps the file as settings.bak";
}

void saveSettings(SettingsStore& store, const Settings& record) {
    updateSettings(store, [&](Settings& live) { live = record; });
}

void updateSettings(SettingsStore& store, const std::function<void(Settings&)>& change) {
    SaveReport report;
    {
        MutexLock fileLock(store.fileMutex);
        changeLive(store, change);
        const Publication afterTheSave(store);
        report = saveLive(store, kKeptPatienceMs);
    }
    report.tell(store);
}

void changeSettings(SettingsStore& store, const std::function<void(Settings&)>& change, std::uint64_t saveAtMs) {
    changeLive(store, change);
    applySettings(store);
    store.saveDueMs = saveAtMs;
    store.isUnsaved = true;
}

void saveWhenDue(SettingsStore& store, std::uint64_t nowMs) {
    const std::uint64_t dueMs = store.saveDueMs;
    if (dueMs != kNoSaveDue && isDue(dueMs, nowMs)) savePendingSettings(store);
}

void savePendingSettings(SettingsStore& store, std::uint32_t patienceMs) {
    if (!store.isUnsaved) return;
    SaveReport report;
    {
        MutexLock fileLock(store.fileMutex);
        if (store.isUnsaved) report = saveLive(store, patienceMs);
    }
    report.tell(store);
}

void applySettings(SettingsStore& store) {
    MutexLock lock(store.mutex);  // throughout, so that of two threads the one with the newer record publishes last
    const std::uint32_t flags = audioFlagsOf(store.live);
    const bool isOther = store.AudioFlags.exchange(flags) != flags;
    store.TransmitGain = transmitGainOf(store.live);
    // After the switches are published: a voice that sees the new generation starts afresh under them, not before.
    if (isOther) store.DspGeneration.fetch_add(1);
}
