// folder_look.h - whether the folder that a worker serves, or waits for, has gone.
#pragma once
#include <cstdint>
#include <string>
#include "worker/worker_folder.h"

inline constexpr std::uint64_t kFolderCheckMs = 230;  // the folder's disappearance shows within 500 ms,
inline constexpr std::uint64_t kFolderAgainMs = 46;   // once a second look, so soon after the first, finds none either

// [one thread] The folder handed in outlives it.
class FolderLook {
  public:
    FolderLook(WorkerFolder& folder, std::string path);

    // Looks if that is due. True once two looks in a row have found no folder; one alone may be wrong.
    bool isGone(std::uint64_t nowMs);
    // Until the next look; 0: it is due.
    std::uint64_t msUntilDue(std::uint64_t nowMs) const;
    // The last look found no folder.
    bool isInDoubt() const { return misses_ > 0; }

  private:
    WorkerFolder& folder_;
    std::string path_;
    std::uint64_t lookedMs_ = 0;  // 0: never
    int misses_ = 0;              // looks in a row that found no folder
};
