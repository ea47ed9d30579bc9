// fakes.h - a clock set by hand and files in memory, for tests of the portable core.
#pragma once
#include <atomic>
#include <map>
#include "base/clock.h"
#include "base/data_files.h"
#include "base/mutex.h"

class ManualClock : public Clock {
  public:
    std::uint64_t tickMs() const override { return tick.load(); }
    double unixSeconds() const override { return seconds.load(); }
    // Both times advance by ms.
    void advance(std::uint64_t ms) {
        tick += ms;
        seconds = seconds.load() + static_cast<double>(ms) / 1000.0;
    }

    std::atomic<std::uint64_t> tick{1'000'000};    // ms since system start
    std::atomic<double> seconds{1'790'000'000.0};  // since 1970
};

// Thread-safe, so that the roles of a thread test may share one.
class MemoryFiles : public DataFiles {
  public:
    bool read(const std::string& path, std::string& bytes) override {
        MutexLock lock(mutex_);
        reads++;
        bytes.clear();
        const auto file = files_.find(path);
        if (file == files_.end()) return false;
        bytes = file->second;
        return true;
    }
    bool replace(const std::string& path, std::string_view bytes) override {
        MutexLock lock(mutex_);
        replaces++;
        if (readOnly) return false;
        files_[path] = std::string(bytes);
        return true;
    }
    // What the test puts there and reads there; an absent file reads as empty.
    void put(const std::string& path, std::string_view bytes) {
        MutexLock lock(mutex_);
        files_[path] = std::string(bytes);
    }
    void remove(const std::string& path) {
        MutexLock lock(mutex_);
        files_.erase(path);
    }
    bool has(const std::string& path) {
        MutexLock lock(mutex_);
        return files_.count(path) != 0;
    }
    std::string text(const std::string& path) {
        MutexLock lock(mutex_);
        const auto file = files_.find(path);
        return file == files_.end() ? std::string() : file->second;
    }

    std::atomic<bool> readOnly{false};  // every replace fails
    std::atomic<int> reads{0};
    std::atomic<int> replaces{0};

  private:
    Mutex mutex_;
    std::map<std::string, std::string> files_ GUARDED_BY(mutex_);
};
