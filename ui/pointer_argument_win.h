// pointer_argument_win.h - a pointer that the window system carries as a number: in a message, or in a window's data.
#pragma once
#include <windows.h>

template <class Type>
Type* pointerFrom(LONG_PTR number) {
    return reinterpret_cast<Type*>(number);  // NOLINT(performance-no-int-to-ptr): it was made from a pointer
}
