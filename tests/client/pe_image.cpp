#include "tests/client/pe_image.h"
#include <cstring>

namespace {

// Offsets of the PE/COFF file format (PE32+ images).
constexpr std::size_t kHeaderPointer = 0x3c;
constexpr std::size_t kSectionCount = 6;
constexpr std::size_t kOptionalHeaderSize = 20;
constexpr std::size_t kOptionalHeader = 24;
constexpr std::size_t kDirectories = 112;  // in the optional header
constexpr std::size_t kDirectoryBytes = 8;
constexpr std::size_t kSectionBytes = 40;
constexpr std::uint16_t kMagic64 = 0x20b;
enum Directory { kExportDirectory = 0, kImportDirectory = 1, kResourceDirectory = 2, kDelayImportDirectory = 13 };

template <class Number>
Number numberAt(std::string_view image, std::size_t offset) {
    Number number = 0;
    if (offset <= image.size() && image.size() - offset >= sizeof number) {
        std::memcpy(&number, image.data() + offset, sizeof number);
    }
    return number;
}

// The file offset of an address in the loaded image; the file's size (nothing there) if no section holds it.
std::size_t fileOffset(std::string_view image, std::uint32_t address) {
    const std::size_t header = numberAt<std::uint32_t>(image, kHeaderPointer);
    const std::size_t sections =
        header + kOptionalHeader + numberAt<std::uint16_t>(image, header + kOptionalHeaderSize);
    for (std::size_t i = 0; i < numberAt<std::uint16_t>(image, header + kSectionCount); i++) {
        const std::size_t section = sections + i * kSectionBytes;
        const auto virtualSize = numberAt<std::uint32_t>(image, section + 8);
        const auto start = numberAt<std::uint32_t>(image, section + 12);
        const auto raw = numberAt<std::uint32_t>(image, section + 20);
        if (address >= start && address - start < virtualSize) return raw + (address - start);
    }
    return image.size();
}

std::string textAt(std::string_view image, std::uint32_t address) {
    const std::size_t offset = fileOffset(image, address);
    const std::string_view rest = image.substr(offset < image.size() ? offset : image.size());
    return std::string(rest.substr(0, rest.find('\0')));
}

// The file offset of a directory's table; the file's size if the image has none.
std::size_t directoryOffset(std::string_view image, Directory directory) {
    const std::size_t optional = numberAt<std::uint32_t>(image, kHeaderPointer) + kOptionalHeader;
    if (image.substr(0, 2) != "MZ" || numberAt<std::uint16_t>(image, optional) != kMagic64) return image.size();
    const auto address = numberAt<std::uint32_t>(image, optional + kDirectories + directory * kDirectoryBytes);
    return address == 0 ? image.size() : fileOffset(image, address);
}

void appendLibraries(std::string_view image, Directory directory, std::size_t rowBytes, std::size_t nameField,
                     std::vector<std::string>& libraries) {
    std::size_t row = directoryOffset(image, directory);
    for (; row < image.size(); row += rowBytes) {
        const auto name = numberAt<std::uint32_t>(image, row + nameField);
        if (name == 0) return;
        libraries.push_back(textAt(image, name));
    }
}

// The row with this number in a table of resources: eight bytes, the number first. Named rows come before numbered
// ones.
std::optional<std::size_t> resourceRow(std::string_view image, std::size_t table, std::uint32_t number) {
    const auto named = numberAt<std::uint16_t>(image, table + 12);
    const auto numbered = numberAt<std::uint16_t>(image, table + 14);
    for (std::size_t i = named; i < std::size_t{named} + numbered; i++) {
        const std::size_t row = table + 16 + 8 * i;
        if (numberAt<std::uint32_t>(image, row) == number) return row;
    }
    return std::nullopt;
}

}  // namespace

std::vector<std::string> exportedNames(std::string_view image) {
    std::vector<std::string> names;
    const std::size_t table = directoryOffset(image, kExportDirectory);
    const auto count = numberAt<std::uint32_t>(image, table + 24);
    const std::size_t pointers = fileOffset(image, numberAt<std::uint32_t>(image, table + 32));
    for (std::size_t i = 0; i < count && pointers + 4 * i < image.size(); i++) {
        names.push_back(textAt(image, numberAt<std::uint32_t>(image, pointers + 4 * i)));
    }
    return names;
}

std::vector<std::string> importedLibraries(std::string_view image) {
    std::vector<std::string> libraries;
    appendLibraries(image, kImportDirectory, 20, 12, libraries);
    appendLibraries(image, kDelayImportDirectory, 32, 4, libraries);
    return libraries;
}

std::optional<std::size_t> resourceNumberOffset(std::string_view image, std::uint32_t type, std::uint32_t number) {
    constexpr std::uint32_t kIsTable = 0x80000000;
    const std::size_t types = directoryOffset(image, kResourceDirectory);
    const auto typeRow = resourceRow(image, types, type);
    if (!typeRow) return std::nullopt;
    return resourceRow(image, types + (numberAt<std::uint32_t>(image, *typeRow + 4) & ~kIsTable), number);
}
