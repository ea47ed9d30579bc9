// version_resource_win.h - the version resource of a module that Windows has mapped.
#pragma once
#include <windows.h>
#include <optional>
#include "base/version_resource.h"

// [any] Of a loaded program or library, or of one mapped as data. Out of the mapped bytes, so that VERSION.dll is not
// needed: it is none of the libraries that Windows takes from its own folder only, and a program that names it among
// its imports would load any file of that name that lies beside it.
std::optional<ProgramVersion> versionOf(HMODULE module);
