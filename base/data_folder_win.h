// data_folder_win.h - where our files are. Paths are narrow, without a trailing separator.
#pragma once
#include <string>

// [host] "%APPDATA%\Corvalis"; ".\Corvalis" if the variable is missing, empty, too long (260) or has no narrow form.
std::string findDataFolder();

// [host] Creates it; it is not a failure if it exists already or cannot be created.
void createDataFolder(const std::string& folder);

// [host] The folder of the DLL that this code is in; empty if it cannot be found.
std::string findModuleFolder();
