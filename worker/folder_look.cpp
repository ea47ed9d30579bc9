#include "worker/folder_look.h"
#include <utility>

FolderLook::FolderLook(WorkerFolder& folder, std::string path) : folder_(folder), path_(std::move(path)) {}

bool FolderLook::isGone(std::uint64_t nowMs) {
    if (msUntilDue(nowMs) == 0) {
        lookedMs_ = nowMs;
        misses_ = folder_.isGone(path_) ? misses_ + 1 : 0;
    }
    return misses_ >= 2;
}

std::uint64_t FolderLook::msUntilDue(std::uint64_t nowMs) const {
    if (lookedMs_ == 0) return 0;
    const auto gapMs = misses_ > 0 ? kFolderAgainMs : kFolderCheckMs;
    const auto sinceMs = nowMs - lookedMs_;
    return sinceMs >= gapMs ? 0 : gapMs - sinceMs;
}
