// settings_fuzz.cpp - settings.ini of any bytes: every value read is in range, and what is written reads back the same.
#include <cstdio>
#include <cstdlib>
#include "settings/settings_text.h"
#include "tests/unit/settings/settings_ranges.h"

namespace {

void require(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const Settings first = readSettingsText(std::string_view(reinterpret_cast<const char*>(data), size));
    require(fieldOutOfRange(first).empty(), fieldOutOfRange(first));
    const std::string text = writeSettingsText(first);
    const Settings second = readSettingsText(text);  // floats lose what six digits cannot hold, once
    require(fieldOutOfRange(second).empty(), fieldOutOfRange(second));
    require(writeSettingsText(second) == text, "the second text differs from the first");
    require(readSettingsText(writeSettingsText(second)) == second, "the third record differs from the second");
    require(second.python == first.python && second.language == first.language, "a text changed");
    return 0;
}
