// log_line.h - lines for the host's log: cut to a fixed size, but never inside a UTF-8 character.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include "base/host_functions.h"

inline constexpr std::size_t kLogLineBytes = 512;  // buffer with its final zero: at most 511 bytes of text

// [any] Logs text at level information on channel "Corvalis", cut to bufferBytes - 1 bytes.
// Does nothing when the host has no logMessage.
void logToHost(const HostFunctions& host, std::string_view text, std::size_t bufferBytes = kLogLineBytes);
