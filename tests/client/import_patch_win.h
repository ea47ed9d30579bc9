// import_patch_win.h - puts a test's function in place of a system function that the plugin imports, for the plugin
// alone: to refuse what the system would grant, or to see what the plugin asks for.
// [host] Made and destroyed on the test's main thread; the replacement runs on whichever thread calls it.
#pragma once
#include <windows.h>
#include <cstdint>

class ImportPatch {
  public:
    // Patches the loaded DLL; name as in its import table.
    ImportPatch(const wchar_t* module, const char* name, void* replacement);
    ~ImportPatch();  // puts the system's function back, if the DLL is still there
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    bool isInPlace() const { return slot_ != nullptr; }  // false: no such module or import
    void* original() const { return original_; }

  private:
    void put(void* function);

    const wchar_t* module_;
    HMODULE base_;
    void** slot_ = nullptr;
    void* original_ = nullptr;
};

// The threads that the plugin itself makes, told apart from all others in the process. One object at a time, made while
// the DLL is loaded and none of its threads runs.
class ThreadStarts {
  public:
    ThreadStarts();
    ~ThreadStarts();
    ThreadStarts(const ThreadStarts&) = delete;
    ThreadStarts& operator=(const ThreadStarts&) = delete;

    bool isWatching() const { return patch_.isInPlace(); }
    // The system grants `granted` more threads, then refuses the next `count`.
    void refuse(int count, int granted = 0);
    int count() const;    // made so far
    int running() const;  // how many of them still run

  private:
    ImportPatch patch_;
};
