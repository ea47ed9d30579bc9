#include "tests/client/resource_count_win.h"
#include <windows.h>
// psapi.h needs windows.h before it.
#include <psapi.h>
// winternl.h too.
#include <winternl.h>
#include <algorithm>
#include <bit>
#include <span>
#include <vector>
#include "tests/client/test_machine_win.h"

// From ntdll; no header declares it.
extern "C" void* WINAPI RtlGetCurrentPeb();

namespace {

// The process environment block points at the table of GDI objects, at the same place in Windows and in Wine (64-bit).
constexpr std::size_t kGdiTablePointer = 0xF8;
// And at two bitmaps of thread slots, 64 and 1024 of them.
constexpr std::size_t kSlotBitmapPointers[] = {0x78, 0x238};
constexpr std::size_t kGdiTableRows = 0x10000;
constexpr std::uintptr_t kMostHandle = 0x4000;  // handles are multiples of 4, reused from the lowest

struct GdiTableRow {
    std::uint64_t object;
    std::uint16_t processId;  // of the owner; 0 for the system's own
    std::uint16_t lockCount;
    std::uint16_t generation;
    std::uint8_t type;  // 0 while the row is free
    std::uint8_t flags;
    std::uint64_t userData;
};
static_assert(sizeof(GdiTableRow) == 24);

// Wine's GetGuiResources answers 0; its table lists this process's objects.
std::span<const GdiTableRow> gdiRows() {
    const auto* block = static_cast<const char*>(RtlGetCurrentPeb());
    const auto* table = *reinterpret_cast<const GdiTableRow* const*>(block + kGdiTablePointer);
    return {table, table ? kGdiTableRows : 0};
}

bool isInUse(const GdiTableRow& row) {
    return row.type != 0;
}

// As the handles of Windows and Wine have it in their bits 16 to 22.
std::string gdiKindName(std::uint8_t type) {
    switch (type & 0x7F) {
        case 0x01:
            return "device context";
        case 0x04:
            return "region";
        case 0x05:
            return "surface";
        case 0x08:
            return "palette";
        case 0x09:
            return "bitmap";
        case 0x0A:
            return "font";
        case 0x10:
            return "brush";
        case 0x30:
            return "pen";
        default:
            return "type " + std::to_string(type);
    }
}

struct Bitmap {
    std::uint32_t bits;
    const std::uint32_t* words;
};

BOOL CALLBACK countOwnWindow(HWND window, LPARAM count) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == GetCurrentProcessId()) ++*reinterpret_cast<int*>(count);
    return TRUE;
}

int countTopWindows() {
    int count = 0;
    EnumWindows(countOwnWindow, reinterpret_cast<LPARAM>(&count));
    return count;
}

std::uint64_t countPrivateBytes() {
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    return counters.PrivateUsage > 0 ? counters.PrivateUsage : counters.PagefileUsage;
}

}  // namespace

ResourceCount countResources() {
    const auto gdi = static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS));
    const auto user = static_cast<int>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS));
    return {gdi > 0 ? gdi : static_cast<int>(std::ranges::count_if(gdiRows(), isInUse)),
            user > 0 ? user : countTopWindows(), handleCount(), countPrivateBytes()};
}

std::size_t heapBytes() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    std::size_t bytes = 0;
    for (DWORD i = 0; i < count && i < 64; i++) {
        HeapLock(heaps[i]);
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
        }
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

int threadSlotCount() {
    const auto* block = static_cast<const char*>(RtlGetCurrentPeb());
    int count = 0;
    for (const std::size_t pointer : kSlotBitmapPointers) {
        const Bitmap* bitmap = *reinterpret_cast<const Bitmap* const*>(block + pointer);
        for (std::uint32_t i = 0; bitmap && i < bitmap->bits / 32; i++) count += std::popcount(bitmap->words[i]);
    }
    return count;
}

// No table lists them: what is left is taken and given back.
int fiberSlotCount() {
    std::vector<DWORD> left;
    for (DWORD slot = FlsAlloc(nullptr); slot != FLS_OUT_OF_INDEXES; slot = FlsAlloc(nullptr)) left.push_back(slot);
    for (const DWORD slot : left) FlsFree(slot);
    static const int atFirst = static_cast<int>(left.size());
    return atFirst - static_cast<int>(left.size());
}

std::map<std::string, int> gdiKinds() {
    std::map<std::string, int> kinds;
    for (const GdiTableRow& row : gdiRows()) {
        if (isInUse(row)) kinds[gdiKindName(row.type)]++;
    }
    return kinds;
}

std::map<std::string, int> handleTypes() {
    std::map<std::string, int> types;
    for (std::uintptr_t value = 4; value < kMostHandle; value += 4) {
        const auto handle = reinterpret_cast<HANDLE>(value);
        DWORD flags = 0;
        alignas(8) char bytes[1024] = {};
        if (!GetHandleInformation(handle, &flags)) continue;
        // ObjectTypeInformation: begins with the type's name.
        const NTSTATUS status =
            NtQueryObject(handle, static_cast<OBJECT_INFORMATION_CLASS>(2), bytes, sizeof bytes, nullptr);
        const auto* name = reinterpret_cast<const UNICODE_STRING*>(bytes);
        if (status != 0 || !name->Buffer) {
            types["?"]++;
            continue;
        }
        types[toUtf8({name->Buffer, name->Length / sizeof(wchar_t)})]++;
    }
    return types;
}
