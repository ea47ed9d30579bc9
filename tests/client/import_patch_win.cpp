#include "tests/client/import_patch_win.h"
#include <cerrno>
#include <cstring>
#include <vector>
#include "base/mutex.h"

namespace {

void** findSlot(char* base, const char* name) {
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; directory.Size > 0 && library->Name != 0; library++) {
        const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + library->OriginalFirstThunk);
        auto** slots = reinterpret_cast<void**>(base + library->FirstThunk);
        for (int i = 0; names[i].u1.AddressOfData != 0; i++) {
            if (IMAGE_SNAP_BY_ORDINAL64(names[i].u1.Ordinal)) continue;
            const auto* entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names[i].u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) return slots + i;
        }
    }
    return nullptr;
}

// The state of the only ThreadStarts; the plugin's threads get here without an object.
struct StartRecord {
    Mutex mutex;  // [any] guards all below, for one start or look
    int granted GUARDED_BY(mutex) = 0;
    int refused GUARDED_BY(mutex) = 0;  // after the granted ones
    std::vector<HANDLE> threads GUARDED_BY(mutex);
};
StartRecord gStarts;

// The C++ library inside the DLL starts its threads with this function.
constexpr const char* kStartFunction = "_beginthreadex";
using ThreadBody = unsigned(__stdcall*)(void*);
using StartFunction = std::uintptr_t(__cdecl*)(void*, unsigned, ThreadBody, void*, unsigned, unsigned*);
StartFunction gStartThread = nullptr;  // the system's

std::uintptr_t __cdecl startThread(void* security, unsigned stackBytes, ThreadBody body, void* argument, unsigned flags,
                                   unsigned* id) {
    const MutexLock lock(gStarts.mutex);
    if (gStarts.granted > 0) {
        gStarts.granted--;
    } else if (gStarts.refused > 0) {
        gStarts.refused--;
        errno = EAGAIN;
        return 0;
    }
    const std::uintptr_t made = gStartThread(security, stackBytes, body, argument, flags, id);
    HANDLE thread = nullptr;
    if (made != 0 && DuplicateHandle(GetCurrentProcess(), reinterpret_cast<HANDLE>(made), GetCurrentProcess(), &thread,
                                     SYNCHRONIZE, FALSE, 0))
        gStarts.threads.push_back(thread);
    return made;
}

}  // namespace

ImportPatch::ImportPatch(const wchar_t* module, const char* name, void* replacement)
    : module_(module), base_(GetModuleHandleW(module)) {
    if (base_) slot_ = findSlot(reinterpret_cast<char*>(base_), name);
    if (!slot_) return;
    original_ = *slot_;
    put(replacement);
}

ImportPatch::~ImportPatch() {
    if (slot_ && GetModuleHandleW(module_) == base_) put(original_);
}

void ImportPatch::put(void* function) {
    DWORD before = 0;
    VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &before);
    InterlockedExchangePointer(slot_, function);
    VirtualProtect(slot_, sizeof *slot_, before, &before);
}

ThreadStarts::ThreadStarts() : patch_(L"corvalis_win64.dll", kStartFunction, reinterpret_cast<void*>(&startThread)) {
    gStartThread = reinterpret_cast<StartFunction>(patch_.original());
}

ThreadStarts::~ThreadStarts() {
    const MutexLock lock(gStarts.mutex);
    for (const HANDLE thread : gStarts.threads) CloseHandle(thread);
    gStarts.threads.clear();
    gStarts.granted = gStarts.refused = 0;
}

void ThreadStarts::refuse(int count, int granted) {
    const MutexLock lock(gStarts.mutex);
    gStarts.refused = count;
    gStarts.granted = granted;
}

int ThreadStarts::count() const {
    const MutexLock lock(gStarts.mutex);
    return static_cast<int>(gStarts.threads.size());
}

int ThreadStarts::running() const {
    const MutexLock lock(gStarts.mutex);
    int count = 0;
    for (const HANDLE thread : gStarts.threads) count += WaitForSingleObject(thread, 0) == WAIT_TIMEOUT;
    return count;
}
