// handle_win.h - owns a kernel object's handle and closes it.
#pragma once
#include <windows.h>
#include <memory>

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;
