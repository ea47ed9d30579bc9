// worker_fakes.h - the worker's surroundings in memory: a folder over MemoryFiles, a log that can be read, a link set
// by hand.
#pragma once
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>
#include "base/number_text.h"
#include "tests/unit/fakes.h"
#include "worker/sim_link.h"
#include "worker/worker_folder.h"
#include "worker/worker_log.h"

// Stamps follow the text: a different text of the same length has a different stamp unless coarse is set.
class MemoryFolder : public WorkerFolder {
  public:
    explicit MemoryFolder(MemoryFiles& files) : files_(files) {}
    bool isGone(const std::string&) override {
        checks++;
        if (missesToCome == 0) return gone;
        missesToCome--;
        return true;
    }
    FileStamp stamp(const std::string& path) override {
        stamps++;
        FileStamp stamp;
        stamp.exists = files_.has(path);
        const auto text = files_.text(path);
        stamp.bytes = pretendBytes.count(path) ? pretendBytes[path] : text.size();
        stamp.written = coarse ? 1 : std::hash<std::string>{}(text);
        return stamp;
    }

    bool gone = false;
    int missesToCome = 0;  // looks that find no folder though it is there
    bool coarse = false;   // all texts of one length have the same stamp
    int checks = 0;
    int stamps = 0;
    std::map<std::string, std::uint64_t> pretendBytes;

  private:
    MemoryFiles& files_;
};

class MemoryLogFile : public LogFile {
  public:
    std::uint64_t bytes() override { return text.size(); }
    bool append(std::string_view line) override {
        if (readOnly) return false;
        text += line;
        return true;
    }
    bool rotate() override {
        if (!canRotate) return false;
        old = std::exchange(text, {});
        return true;
    }
    bool has(std::string_view part) const { return text.find(part) != std::string::npos; }
    int count(std::string_view part) const {
        int found = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) found++;
        return found;
    }

    std::string text;
    std::string old;
    bool readOnly = false;
    bool canRotate = true;
};

// A link whose snapshot the test sets; writes are only recorded.
class ManualLink : public SimLink {
  public:
    ManualLink() {
        sim.ok = true;
        sim.status = "test aircraft";
        for (auto& radio : sim.radios) radio = {122800, 121500, 1, 0.5f, {true, true, true, true}};
    }
    void poll(std::uint64_t) override {}
    const SimSnapshot& snapshot() const override { return sim; }
    bool write(const RadioWrite& request, std::uint64_t) override {
        writes.push_back(request);
        return takesWrites;
    }

    SimSnapshot sim;
    std::vector<RadioWrite> writes;
    bool takesWrites = true;
};

inline std::string commandText(const std::string& id, int com, const std::string& slot, const std::string& target,
                               double created) {
    return "{\"id\":\"" + id + "\",\"com\":" + std::to_string(com) + ",\"slot\":\"" + slot + "\",\"target\":" + target +
           ",\"created\":" + formatFixed(created, 3) + "}";
}
