// handle_win.h - owns a kernel object's handle and closes it.
#pragma once
#include <windows.h>
#include <memory>

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

// The owner of CreateFile's result; null if it failed.
inline OwnedHandle ownFile(HANDLE file) {
    return OwnedHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}
