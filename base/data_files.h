// data_files.h - the files that plugin and worker exchange, as whole texts. The glue opens real ones; tests use a map.
// Paths are narrow (the system code page). No call throws for a file that is missing, locked or read-only.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

class DataFiles {
  public:
    virtual ~DataFiles() = default;

    // [any] All bytes of the file. False if it cannot be opened; bytes is then empty. A file that is just being
    // replaced by the other process is tried three times within the call.
    virtual bool read(const std::string& path, std::string& bytes) = 0;

    // [any] The same, but at most maxBytes from the file's beginning: no more is read of a file that is larger. Files
    // in memory may do with this one.
    virtual bool readBeginning(const std::string& path, std::size_t maxBytes, std::string& bytes) {
        if (!read(path, bytes)) return false;
        if (bytes.size() > maxBytes) bytes.resize(maxBytes);
        return true;
    }

    // [any] Writes path + ".tmp" and moves it over path, so that a reader sees the old text or the new, never half.
    // False if the temporary file cannot be written or moved: path then keeps its old text.
    virtual bool replace(const std::string& path, std::string_view bytes) = 0;
};

// Joins with a backslash, adding it even when folder already ends in one; an empty folder gives the bare name.
inline std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty()) path += '\\';
    return path += name;
}
