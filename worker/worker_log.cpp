#include "worker/worker_log.h"
#include <algorithm>
#include <chrono>
#include <cmath>
#include "base/log_line.h"
#include "base/utf8.h"

namespace {

std::string padded(std::uint64_t number, std::size_t digits) {
    auto text = std::to_string(number);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

char printable(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? '?' : c;
}

}  // namespace

std::string utcText(double unixSeconds) {
    constexpr double kEndOf9999 = 253402300799.0;
    const double clamped = unixSeconds > 0.0 ? std::min(unixSeconds, kEndOf9999) : 0.0;  // also 0 for NaN
    const auto totalMs = static_cast<std::uint64_t>(clamped * 1000.0);
    const auto day = std::chrono::sys_days{std::chrono::days{totalMs / 86'400'000}};
    const std::chrono::year_month_day date{day};
    const auto ms = totalMs % 86'400'000;
    return padded(static_cast<std::uint64_t>(static_cast<int>(date.year())), 4) + '-' +
           padded(static_cast<unsigned>(date.month()), 2) + '-' + padded(static_cast<unsigned>(date.day()), 2) + ' ' +
           padded(ms / 3'600'000, 2) + ':' + padded(ms / 60'000 % 60, 2) + ':' + padded(ms / 1000 % 60, 2) + '.' +
           padded(ms % 1000, 3) + " UTC";
}

void WorkerLog::line(std::string_view text) {
    auto line = utcText(clock_.unixSeconds()) + "  " + std::string(cutUtf8(text, kMaxLogTextBytes));
    std::transform(line.begin(), line.end(), line.begin(), printable);
    line += "\r\n";
    const auto before = file_.bytes();
    if (before + line.size() > kMaxLogBytes && !file_.rotate() && before + line.size() > kLogDropBytes) return;
    file_.append(line);
}
