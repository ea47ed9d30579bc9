#include "base/data_files.h"
#include <algorithm>
#include <iterator>
#include <limits>

namespace {

// The other side's rename takes well under a millisecond. A virus scanner or a backup holds a file for longer; what
// people keep is worth waiting for that.
constexpr std::uint32_t kPausesMs[] = {3, 3, 6, 12, 25, 50};
constexpr std::string_view kTemporaryEnd = ".tmp";
constexpr std::size_t kWhole = std::numeric_limits<std::size_t>::max();
constexpr int kMostSetAside = 9;  // files of one name; the last of them is replaced

bool isWorthAnotherTry(FileState state) {
    return state == FileState::kHeld || state == FileState::kFailed;
}

// The next of kPausesMs, but not beyond the patience that is left.
std::uint32_t pauseAfter(int tries, std::uint32_t patienceMs) {
    const auto pauseMs = kPausesMs[std::min<std::size_t>(static_cast<std::size_t>(tries), std::size(kPausesMs)) - 1];
    return tries < kFileTries ? pauseMs : std::min(pauseMs, patienceMs);
}

}  // namespace

// Runs attempt until it is done, fails for good, or tries and patience are used up; takes the pauses off patienceMs.
template <class Attempt>
FileResult DataFiles::tryAgain(std::uint32_t& patienceMs, Attempt attempt) {
    for (int tries = 1;; tries++) {
        const FileResult result = attempt();
        if (!isWorthAnotherTry(result.state)) return result;
        const bool isWaitedFor = result.state == FileState::kHeld && patienceMs > 0;
        if (tries >= kFileTries && !isWaitedFor) return result;
        const std::uint32_t pauseMs = pauseAfter(tries, patienceMs);
        patienceMs -= std::min(patienceMs, std::max(pauseMs, pause(pauseMs)));
    }
}

FileResult DataFiles::read(const std::string& path, std::string& bytes) {
    return readBeginning(path, kWhole, bytes);
}

FileResult DataFiles::readBeginning(const std::string& path, std::size_t maxBytes, std::string& bytes) {
    std::uint32_t patienceMs = 0;
    const FileResult result = tryAgain(patienceMs, [&] { return readOnce(path, maxBytes, bytes); });
    if (!result) bytes.clear();
    return result;
}

FileResult DataFiles::readKept(const std::string& path, std::string& bytes) {
    std::uint32_t patienceMs = kKeptPatienceMs;
    return tryAgain(patienceMs, [&] { return readOnce(path, kWhole, bytes); });
}

FileResult DataFiles::replace(const std::string& path, std::string_view bytes) {
    SetAside nowhere;
    return put(path, bytes, false, nowhere, 0);
}

FileResult DataFiles::replaceKept(const std::string& path, std::string_view bytes, SetAside& aside,
                                  std::uint32_t patienceMs) {
    return put(path, bytes, true, aside, patienceMs);
}

FileResult DataFiles::put(const std::string& path, std::string_view bytes, bool isFlushed, SetAside& aside,
                          std::uint32_t patienceMs) {
    const std::string temporary = temporaryOf(path);
    FileResult result = tryAgain(patienceMs, [&] { return writeOnce(temporary, bytes, isFlushed); });
    // Only now: a disk that is full leaves the old file where it is.
    if (result && !aside.wantedPath.empty()) result = setAside(path, aside, patienceMs);
    if (result) result = tryAgain(patienceMs, [&] { return moveOnce(temporary, path, true); });
    if (!result) remove(temporary);
    return result;
}

FileResult DataFiles::setAside(const std::string& path, SetAside& aside, std::uint32_t& patienceMs) {
    FileResult result{FileState::kTaken};
    std::string to;
    for (int number = 1; result.state == FileState::kTaken && number <= kMostSetAside; number++) {
        to = aside.wantedPath + (number == 1 ? std::string() : '.' + std::to_string(number));
        result = tryAgain(patienceMs, [&] { return moveOnce(path, to, number == kMostSetAside); });
    }
    if (result) aside.path = to;
    if (result.state == FileState::kMissing) result = {};  // somebody has taken it away
    if (result) aside.wantedPath.clear();
    return result;
}

std::string DataFiles::temporaryOf(const std::string& path) const {
    return path + '.' + std::to_string(processId()) + std::string(kTemporaryEnd);
}

bool isTemporaryOf(std::string_view name, std::string_view fileName) {
    if (!name.starts_with(fileName) || !name.ends_with(kTemporaryEnd)) return false;
    if (name.size() < fileName.size() + kTemporaryEnd.size() + 2) return false;
    const auto middle = name.substr(fileName.size(), name.size() - fileName.size() - kTemporaryEnd.size());
    return middle.front() == '.' && middle.find_first_not_of("0123456789", 1) == std::string_view::npos;
}
