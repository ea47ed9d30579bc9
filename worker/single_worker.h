// single_worker.h - the name that keeps two workers in one session from serving the same data folder.
#pragma once
#include <string>
#include <string_view>

// Name of the mutex for the folder: "Local\CorvalisWorker-" and 16 hexadecimal digits. canonicalPath is the folder's
// full final path; ASCII case and a trailing backslash make no difference.
std::string workerMutexName(std::string_view canonicalPath);
