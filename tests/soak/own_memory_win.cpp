#include "tests/soak/own_memory_win.h"
#include <malloc.h>
#include <atomic>

namespace {

constexpr const wchar_t* kLibrary = L"corvalis_win64.dll";

std::atomic<std::int64_t> gBytes{0}, gBlocks{0};

// The system's.
void* (*gMalloc)(std::size_t bytes) = nullptr;
void* (*gCalloc)(std::size_t count, std::size_t bytes) = nullptr;
void* (*gRealloc)(void* block, std::size_t bytes) = nullptr;
void (*gFree)(void* block) = nullptr;
void*(WINAPI* gGdipAlloc)(std::size_t bytes) = nullptr;
void(WINAPI* gGdipFree)(void* block) = nullptr;

std::int64_t sizeOf(void* block) {
    return block ? static_cast<std::int64_t>(_msize(block)) : 0;
}

void* added(void* block) {
    gBytes += sizeOf(block);
    gBlocks += block != nullptr;
    return block;
}

void* countedMalloc(std::size_t bytes) {
    return added(gMalloc(bytes));
}

void* countedCalloc(std::size_t count, std::size_t bytes) {
    return added(gCalloc(count, bytes));
}

void* countedRealloc(void* block, std::size_t bytes) {
    const std::int64_t before = sizeOf(block);
    void* const again = gRealloc(block, bytes);
    if (!again && bytes > 0) return nullptr;  // the old one is as it was
    gBytes += sizeOf(again) - before;
    gBlocks += (again != nullptr) - (block != nullptr);
    return again;
}

void countedFree(void* block) {
    gBytes -= sizeOf(block);
    gBlocks -= block != nullptr;
    gFree(block);
}

void* WINAPI countedGdipAlloc(std::size_t bytes) {
    void* const block = gGdipAlloc(bytes);
    gBlocks += block != nullptr;
    return block;
}

void WINAPI countedGdipFree(void* block) {
    gBlocks -= block != nullptr;
    gGdipFree(block);
}

template <class Function>
void keepOriginal(const ImportPatch& patch, Function& function) {
    function = reinterpret_cast<Function>(patch.original());
}

}  // namespace

// None of the plugin's threads runs, so that no call comes before its original is known.
OwnMemory::OwnMemory()
    : malloc_(kLibrary, "malloc", reinterpret_cast<void*>(&countedMalloc)),
      calloc_(kLibrary, "calloc", reinterpret_cast<void*>(&countedCalloc)),
      realloc_(kLibrary, "realloc", reinterpret_cast<void*>(&countedRealloc)),
      free_(kLibrary, "free", reinterpret_cast<void*>(&countedFree)),
      gdipAlloc_(kLibrary, "GdipAlloc", reinterpret_cast<void*>(&countedGdipAlloc)),
      gdipFree_(kLibrary, "GdipFree", reinterpret_cast<void*>(&countedGdipFree)) {
    gBytes = gBlocks = 0;
    keepOriginal(malloc_, gMalloc);
    keepOriginal(calloc_, gCalloc);
    keepOriginal(realloc_, gRealloc);
    keepOriginal(free_, gFree);
    keepOriginal(gdipAlloc_, gGdipAlloc);
    keepOriginal(gdipFree_, gGdipFree);
}

bool OwnMemory::isCounting() const {
    return malloc_.isInPlace() && calloc_.isInPlace() && realloc_.isInPlace() && free_.isInPlace() &&
           gdipAlloc_.isInPlace() && gdipFree_.isInPlace();
}

std::int64_t OwnMemory::bytes() {
    return gBytes;
}

std::int64_t OwnMemory::blocks() {
    return gBlocks;
}

void* OwnMemory::takeAsThePlugin(std::size_t bytes) {
    return countedMalloc(bytes);
}
