// becomes.h - for what another thread or the system does in its own time, and at once as a rule.
#pragma once
#include <chrono>
#include <functional>
#include <thread>

// Asks until the condition holds; false after half a minute.
inline bool becomes(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}
