// data_folder_win.h - where our files are. Paths are narrow, without a trailing separator.
#pragma once
#include <cstdint>
#include <string>

// Below the working folder: where the data folder is when %APPDATA% cannot be used.
inline constexpr const char* kFallbackDataFolder = ".\\Corvalis";

// [host] "%APPDATA%\Corvalis"; kFallbackDataFolder if the variable is missing, empty, too long (260) or has no narrow
// form.
std::string findDataFolder();

// [host] Creates it unless it is there. Returns 0, or the system's error code if there is no such folder afterwards.
std::uint32_t createDataFolder(const std::string& folder);

// [any] The path from its root on, relative to the current directory; the path unchanged if there is no such form. For
// a process with another current directory.
std::string fullPath(const std::string& path);

// [host] The folder of the DLL that this code is in; empty if it cannot be found.
std::string findModuleFolder();
