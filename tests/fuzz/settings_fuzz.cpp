// settings_fuzz.cpp - settings.ini of any bytes: every value read is in range, what is written reads back the same, and
// a change of one setting changes no other, nor is a file lost that could not be read.
#include <cstdio>
#include <cstdlib>
#include "settings/settings_store.h"
#include "settings/settings_text.h"
#include "tests/fuzz/text_mutator.h"
#include "tests/unit/fakes.h"
#include "tests/unit/settings/settings_ranges.h"

namespace {

void require(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what.c_str());
    std::abort();
}

constexpr const char *kFile = "d\\settings.ini", *kBackup = "d\\settings.bak";

// A session of the plugin with this file that changes one setting. Without isReadable an error comes at the file's end.
void changeOne(MemoryFiles& files, bool isReadable) {
    SettingsStore store(files);
    setSettingsFolders(store, "d", "");
    if (!isReadable) {
        files.halfRead = files.text(kFile);
        files.trouble = [](FileStep step, const std::string& path) {
            return step == FileStep::kRead && path == kFile ? FileResult{FileState::kFailed, 23} : FileResult{};
        };
    }
    loadSettings(store);
    files.trouble = {};
    updateSettings(store, [](Settings& live) { live.equalize = !live.equalize; });
}

void checkStore(const std::string& text) {
    for (const bool isReadable : {true, false}) {
        Settings wanted = readSettingsText(isReadable ? text : text.substr(0, text.rfind('\n') + 1));
        wanted.equalize = !wanted.equalize;
        MemoryFiles files;
        files.put(kFile, text);
        changeOne(files, isReadable);
        require(files.text(kFile) == writeSettingsText(wanted), "another setting changed");
        require(files.has(kBackup) != isReadable, "a file is set aside for no reason, or not at all");
        require(isReadable || files.text(kBackup) == text, "a file that cannot be read is lost");
    }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    static TextMutator mutator(writeSettingsText(Settings{}), "\n=");
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const Settings first = readSettingsText(bytes);
    checkStore(bytes);
    require(fieldOutOfRange(first).empty(), fieldOutOfRange(first));
    const std::string text = writeSettingsText(first);
    const Settings second = readSettingsText(text);  // floats lose what six digits cannot hold, once
    require(fieldOutOfRange(second).empty(), fieldOutOfRange(second));
    require(writeSettingsText(second) == text, "the second text differs from the first");
    require(readSettingsText(writeSettingsText(second)) == second, "the third record differs from the second");
    require(second.python == first.python && second.language == first.language, "a text changed");
    return 0;
}
