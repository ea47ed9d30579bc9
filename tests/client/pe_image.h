// pe_image.h - the names that a Windows program file exports, the libraries it imports and where its resources are
// named, read from its bytes. Portable; any bytes may come in: what is no 64-bit image gives empty lists.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Names of the export table, as the file orders them.
std::vector<std::string> exportedNames(std::string_view image);

// Names of the libraries of the import table and of the delayed one, as the file spells them.
std::vector<std::string> importedLibraries(std::string_view image);

// The file offset of the four bytes that hold a resource's number; nothing without such a resource.
std::optional<std::size_t> resourceNumberOffset(std::string_view image, std::uint32_t type, std::uint32_t number);
