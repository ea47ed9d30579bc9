// import_patch_win.h - puts a function of the test's in the place of a system function that the plugin imports, for the
// plugin alone: to refuse what the system would grant, or to see what the plugin asks of it.
// [host] Made and destroyed on the test's main thread; the replacement runs on whichever thread calls.
#pragma once
#include <windows.h>
#include <cstdint>

class ImportPatch {
  public:
    // Of the loaded DLL; name as its import table has it.
    ImportPatch(const wchar_t* module, const char* name, void* replacement);
    ~ImportPatch();  // the system's function is back, if the DLL is still there
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

// The threads that the plugin itself makes, told from all others of the process. One object at a time, made while the
// DLL is loaded and none of its threads runs.
class ThreadStarts {
  public:
    ThreadStarts();
    ~ThreadStarts();
    ThreadStarts(const ThreadStarts&) = delete;
    ThreadStarts& operator=(const ThreadStarts&) = delete;

    bool isWatching() const { return patch_.isInPlace(); }
    // The system grants that many more threads, then has none left for the next ones.
    void refuse(int count, int granted = 0);
    int count() const;    // made so far
    int running() const;  // of these

  private:
    ImportPatch patch_;
};
