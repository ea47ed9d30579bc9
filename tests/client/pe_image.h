// pe_image.h - the names that a Windows program file exports, the libraries it imports and where its resources' numbers
// are, read from its bytes. Portable; takes any bytes: what is not a 64-bit image gives empty lists.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Names in the export table, in the file's order.
std::vector<std::string> exportedNames(std::string_view image);

// Names of the libraries in the import table and the delay-load table, as spelled in the file.
std::vector<std::string> importedLibraries(std::string_view image);

// The file offset of the four bytes that hold a resource's number; nothing if there is no such resource.
std::optional<std::size_t> resourceNumberOffset(std::string_view image, std::uint32_t type, std::uint32_t number);
