// readable_text.h - any bytes as lines that can be shown: UTF-8 without control characters.
#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Text in the system's code page as UTF-8. Takes any bytes.
using NarrowDecoder = std::function<std::string(const std::string& narrow)>;

// [any] The file's lines as they are, without their LF. A file in UTF-16 is recognised by its mark and becomes UTF-8; a
// UTF-8 mark is left out.
std::vector<std::string> splitLines(std::string_view bytes);

// [any] The line, without a CR at its end, as UTF-8: what is not UTF-8 is taken to be in the system's code page.
// Control characters, and those that turn the direction of the text, become "?", a tab a blank. A line with zero bytes
// is not text; the result then says so.
std::string readableLine(std::string_view line, const NarrowDecoder& decodeNarrow);
