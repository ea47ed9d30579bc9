// pointer_argument_win.h - a pointer that the window system carries as a number: in a message, or beside a window.
#pragma once
#include <windows.h>

template <class Type>
Type* pointerFrom(LONG_PTR number) {
    return reinterpret_cast<Type*>(number);  // NOLINT(performance-no-int-to-ptr): what it is made of
}
