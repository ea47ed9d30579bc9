// data_files.h - the files of the data folder as whole texts: what is tried again and for how long, and how a new text
// takes the place of an old one. The glue does single steps on real files; tests do them in memory.
// Paths are narrow (the system code page). No call throws for a file that is missing, held or read-only.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

enum class FileState {
    kDone,
    kMissing,   // no such file, or no such folder
    kHeld,      // another program has it open and shares too little of it
    kReadOnly,  // marked so: waiting does not help
    kTaken,     // there is a file of the name that must not be replaced
    kFailed,    // anything else: access denied, disk full, damaged
};

struct FileResult {
    FileState state = FileState::kDone;
    std::uint32_t error = 0;  // the system's code; 0 when done
    explicit operator bool() const { return state == FileState::kDone; }
};

// How often anything is tried that may be in another program's way for a moment; between tries are pauses of 3 ms.
inline constexpr int kFileTries = 3;
// How long a file that people keep is waited for while another program holds it.
inline constexpr std::uint32_t kKeptPatienceMs = 100;

// Where an old file goes before a new one takes its place.
struct SetAside {
    std::string wantedPath;  // empty: nowhere; emptied once that is done, or the file is no longer there
    std::string path;        // where it went: wantedPath, or behind it ".2" to ".9" if there is such a file already
};

class DataFiles {
  public:
    virtual ~DataFiles() = default;

    // [any] All bytes of the file; none unless it could be read to its end. Three tries.
    FileResult read(const std::string& path, std::string& bytes);

    // [any] The same, but at most maxBytes from the file's beginning: no more is read of a file that is larger.
    FileResult readBeginning(const std::string& path, std::size_t maxBytes, std::string& bytes);

    // [any] Writes temporaryOf(path) and moves it over path, so that a reader sees the old text or the new, never half.
    // Three tries for each step. Otherwise path keeps its old text, and the temporary file is removed.
    FileResult replace(const std::string& path, std::string_view bytes);

    // The same for what people have made and keep. While another program holds the file it is tried for up to
    // kKeptPatienceMs in all (or patienceMs, where 0 is three tries), and the new text is on the disk before it takes
    // the old one's place.

    // [any] If the file could not be read to its end, bytes holds what came before the error.
    FileResult readKept(const std::string& path, std::string& bytes);

    // [any] Sets the old file aside first if that is wanted. One that cannot be set aside is not replaced.
    FileResult replaceKept(const std::string& path, std::string_view bytes, SetAside& aside,
                           std::uint32_t patienceMs = kKeptPatienceMs);

    // Of this process: two of them never write the same one.
    std::string temporaryOf(const std::string& path) const;

  protected:
    // One step each, tried once.
    // At most maxBytes from the beginning; an error may leave a part.
    virtual FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) = 0;
    virtual FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) = 0;
    virtual FileResult moveOnce(const std::string& from, const std::string& to, bool isReplacing) = 0;
    virtual void remove(const std::string& path) = 0;
    virtual std::uint32_t pause(std::uint32_t ms) = 0;  // returns how many ms it really took
    virtual std::uint32_t processId() const = 0;

  private:
    template <class Attempt>
    FileResult tryAgain(std::uint32_t& patienceMs, Attempt attempt);
    FileResult put(const std::string& path, std::string_view bytes, bool isFlushed, SetAside& aside,
                   std::uint32_t patienceMs);
    FileResult setAside(const std::string& path, SetAside& aside, std::uint32_t& patienceMs);
};

// Joins with a backslash, adding it even when folder already ends in one; an empty folder gives the bare name.
inline std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty()) path += '\\';
    return path += name;
}

// True for "settings.ini.4242.tmp" and "settings.ini": the name of a temporary file, of whatever process.
bool isTemporaryOf(std::string_view name, std::string_view fileName);
