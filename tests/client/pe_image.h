// pe_image.h - the names that a Windows program file exports and the libraries it imports, read from its bytes.
// Portable; any bytes may come in: what is no 64-bit image gives empty lists.
#pragma once
#include <string>
#include <string_view>
#include <vector>

// Names of the export table, as the file orders them.
std::vector<std::string> exportedNames(std::string_view image);

// Names of the libraries of the import table and of the delayed one, as the file spells them.
std::vector<std::string> importedLibraries(std::string_view image);
