// data_files_win.h - the steps of DataFiles on real files, opened so that neither process ever locks the other out.
#pragma once
#include "base/data_files.h"

// Whether a move waits until the disk has it. What is written twenty times a second is not worth that.
enum class MoveOnto { kDisk, kCache };

// [any] No state: every call stands alone.
class WindowsDataFiles : public DataFiles {
  public:
    explicit WindowsDataFiles(MoveOnto moveOnto = MoveOnto::kDisk) : moveOnto_(moveOnto) {}

  protected:
    FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override;
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override;
    FileResult moveOnce(const std::string& from, const std::string& to, bool isReplacing) override;
    void remove(const std::string& path) override;
    std::uint32_t pause(std::uint32_t ms) override;
    std::uint32_t processId() const override;

  private:
    MoveOnto moveOnto_;
};

// [any] Removes the temporary files of that name which a crash or a power cut has left: those a minute old, since a
// replacement takes milliseconds.
void removeOldTemporaries(const std::string& folder, const std::string& fileName);
