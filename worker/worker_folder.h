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
    // False once the folder is gone; a folder to which we have no access still exists.
    virtual bool folderExists(const std::string& path) = 0;
    virtual FileStamp stamp(const std::string& path) = 0;
};
