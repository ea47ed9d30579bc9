// own_memory_win.h - what the plugin itself holds of the C runtime's memory, and of GDI+'s for its objects, told apart
// from what the system and the stand-in client hold in the same heap. [host] Made while the DLL is loaded and none of
// its threads runs; one at a time.
#pragma once
#include <cstddef>
#include <cstdint>
#include "tests/client/import_patch_win.h"

class OwnMemory {
  public:
    OwnMemory();

    bool isCounting() const;  // false: the plugin has its memory from elsewhere
    // What was taken less what was given back since then: a plugin that gives back what it took while it was loaded
    // can come below 0. [any]
    static std::int64_t bytes();
    static std::int64_t blocks();  // GDI+'s too, whose size nobody tells
    // A block of so many bytes that counts as the plugin's, for a leak on purpose. Null without memory.
    static void* takeAsThePlugin(std::size_t bytes);

  private:
    ImportPatch malloc_, calloc_, realloc_, free_, gdipAlloc_, gdipFree_;
};
