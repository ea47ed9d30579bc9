// worker_folder.h - what the worker asks of the file system beyond whole texts: is it there, has it changed.
#pragma once
#include <cstdint>
#include <string>

struct FileStamp {
    bool exists = false;  // a file, not a folder
    std::uint64_t bytes = 0;
    std::uint64_t written = 0;  // last write, in the file system's own unit; only compared
    bool operator==(const FileStamp&) const = default;
};

class WorkerFolder {
  public:
    virtual ~WorkerFolder() = default;
    // True if the system knows no folder, nor anything else, by this path. One look may be wrong: a network drive that
    // is being connected again has no folders for a moment.
    virtual bool isGone(const std::string& path) = 0;
    virtual FileStamp stamp(const std::string& path) = 0;
};
