// versions_win.h - the versions of Windows and of program files, for a report.
#pragma once
#include <string>

// "10.0.19045", as Windows itself has it: the usual functions give the version that the program declares support for.
std::string windowsVersion();

// "1.3.0", from the version resource of the file (a narrow path); the fourth number only if it is not 0. Empty if there
// is no file, or if it has no such resource.
std::string fileVersion(const std::string& path);
