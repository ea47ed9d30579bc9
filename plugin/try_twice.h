// try_twice.h - what must not be lost to a moment's lack of memory.
#pragma once
#include <new>

// A start or an end that lacks memory is begun again from the beginning: each of its steps may be taken twice, and the
// host gives no other chance. What is thrown the second time is the caller's.
template <class Body>
void tryTwice(const Body& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        // Mostly there is some the next moment.
    }
    body();
}
