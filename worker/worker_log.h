// worker_log.h - hopline_worker.log: UTC time and one line for each event; users send it along with a report. A folder
// that cannot be written costs the log and nothing else.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include "base/clock.h"

inline constexpr std::uint64_t kMaxLogBytes = 1'000'000;   // then the file becomes hopline_worker.old.log
inline constexpr std::uint64_t kLogDropBytes = 2'000'000;  // lines are dropped while the full file cannot be moved
inline constexpr std::size_t kMaxLogTextBytes = 500;       // a longer line is cut

// The file behind the log. It is not kept open between calls, so the folder can be moved or deleted meanwhile.
class LogFile {
  public:
    virtual ~LogFile() = default;
    virtual std::uint64_t bytes() = 0;               // 0 if there is none
    virtual bool append(std::string_view line) = 0;  // handed to the system on return, nothing buffered
    virtual bool rotate() = 0;                       // the file replaces the old one
};

// "2026-09-21 14:13:20.250 UTC"; a time outside the years 1970..9999 is clamped to them.
std::string utcText(double unixSeconds);

class WorkerLog {
  public:
    WorkerLog(LogFile& file, const Clock& clock) : file_(file), clock_(clock) {}
    // Control characters are written as "?".
    void line(std::string_view text);

  private:
    LogFile& file_;
    const Clock& clock_;
};
