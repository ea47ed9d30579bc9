// data_files_win.h - the real files behind DataFiles, opened so that neither process ever locks the other out.
#pragma once
#include "base/data_files.h"

// [any] No state: every call stands alone. While another process has the file (sharing or lock violation, access
// denied, delete pending), opening is tried three times and the final move seven times, with pauses of 3 to 50 ms.
class WindowsDataFiles : public DataFiles {
  public:
    bool read(const std::string& path, std::string& bytes) override;
    bool readBeginning(const std::string& path, std::size_t maxBytes, std::string& bytes) override;
    bool replace(const std::string& path, std::string_view bytes) override;
};
