#include "base/version_resource_win.h"

std::optional<ProgramVersion> versionOf(HMODULE module) {
    const HRSRC place = FindResourceW(module, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(16));  // RT_VERSION
    const HGLOBAL loaded = place ? LoadResource(module, place) : nullptr;
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    if (!bytes) return std::nullopt;
    return readVersionResource({static_cast<const std::byte*>(bytes), SizeofResource(module, place)});
}
