// data_folder_win.h - where our files are. Paths are narrow, without a trailing separator.
#pragma once
#include <string>

// [host] "%APPDATA%\Corvalis"; ".\Corvalis" if the variable is missing, empty or of 260 characters or more.
std::string findDataFolder();

// [host] Creates it; that it exists, or cannot be created, is no failure.
void createDataFolder(const std::string& folder);

// [host] The folder of the DLL that this code is in; empty if it cannot be found.
std::string findModuleFolder();
