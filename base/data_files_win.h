// data_files_win.h - the real files behind DataFiles, opened so that neither process ever locks the other out.
#pragma once
#include "base/data_files.h"

// [any] No state: every call stands alone. A file that is just being replaced (sharing violation, access denied, delete
// pending) is tried three times, a few milliseconds apart.
class WindowsDataFiles : public DataFiles {
  public:
    bool read(const std::string& path, std::string& bytes) override;
    bool replace(const std::string& path, std::string_view bytes) override;
};
