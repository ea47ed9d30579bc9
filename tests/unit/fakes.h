// fakes.h - a clock set by hand and files in memory, for tests of the portable core.
#pragma once
#include <algorithm>
#include <atomic>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>
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

// The single steps of file work, as a test sees them come.
enum class FileStep { kRead, kWrite, kMove };

// Thread-safe, so that the roles of a thread test may share one.
class MemoryFiles : public DataFiles {
  public:
    // What the test puts there and reads there; an absent file reads as empty.
    void put(const std::string& path, std::string_view bytes) {
        MutexLock lock(mutex_);
        files_[path] = std::string(bytes);
    }
    void remove(const std::string& path) override {
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

    std::vector<std::string> names() {
        MutexLock lock(mutex_);
        std::vector<std::string> all;
        for (const auto& file : files_) all.push_back(file.first);
        return all;
    }
    // The machine stands still at once: what was not flushed is as long as it was, but holds zeros.
    void loseWhatIsNotOnTheDisk() {
        MutexLock lock(mutex_);
        for (auto& [path, text] : files_)
            if (unflushed_.count(path) != 0) text.assign(text.size(), '\0');
    }

    std::atomic<bool> readOnly{false};  // every replace fails
    std::atomic<int> reads{0};
    std::atomic<std::size_t> mostRead{0};          // bytes of one file
    std::atomic<int> replaces{0};                  // moves into place, also those that failed
    std::atomic<std::uint32_t> paused{0};          // ms
    std::atomic<std::uint32_t> pausesTakeMore{0};  // ms by which each pause lasts longer than asked for
    // Asked before each step on that file (of a move: the target); an answer other than done is what the step comes to.
    // A part that a failed read is to leave is put into halfRead. Set before threads start.
    std::function<FileResult(FileStep, const std::string& path)> trouble;
    std::string halfRead;
    std::uint32_t process = 4242;

  protected:
    FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override {
        reads++;
        bytes = halfRead;
        if (const FileResult result = troubleOf(FileStep::kRead, path); !result) return result;
        MutexLock lock(mutex_);
        bytes.clear();
        const auto file = files_.find(path);
        if (file == files_.end()) return {FileState::kMissing, 2};
        bytes = file->second.substr(0, maxBytes);
        mostRead = std::max<std::size_t>(mostRead, bytes.size());
        return {};
    }
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override {
        if (const FileResult result = troubleOf(FileStep::kWrite, path); !result) return result;
        MutexLock lock(mutex_);
        files_[path] = std::string(bytes);
        unflushed_.erase(path);
        if (!isFlushed) unflushed_.insert(path);
        return {};
    }
    FileResult moveOnce(const std::string& from, const std::string& to, bool isReplacing) override {
        if (const FileResult result = troubleOf(FileStep::kMove, to); !result) return result;
        MutexLock lock(mutex_);
        replaces++;
        if (readOnly) return {FileState::kReadOnly, 5};
        const auto file = files_.find(from);
        if (file == files_.end()) return {FileState::kMissing, 2};
        if (!isReplacing && files_.count(to) != 0) return {FileState::kTaken, 183};
        files_[to] = file->second;
        files_.erase(file);
        unflushed_.erase(to);
        if (unflushed_.erase(from) != 0) unflushed_.insert(to);
        return {};
    }
    std::uint32_t pause(std::uint32_t ms) override {
        const std::uint32_t took = ms + pausesTakeMore;
        paused += took;
        return took;
    }
    std::uint32_t processId() const override { return process; }

  private:
    FileResult troubleOf(FileStep step, const std::string& path) {
        return trouble ? trouble(step, path) : FileResult{};
    }

    Mutex mutex_;
    std::map<std::string, std::string> files_ GUARDED_BY(mutex_);
    std::set<std::string> unflushed_ GUARDED_BY(mutex_);
};
