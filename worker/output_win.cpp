#include "worker/output_win.h"
#include <windows.h>
#include <algorithm>
#include "base/handle_win.h"
#include "base/wide_text_win.h"

namespace {

void writeBytes(HANDLE file, std::string_view bytes) {
    DWORD written = 0;
    while (!bytes.empty() && WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
        if (written == 0) return;
        bytes.remove_prefix(written);
    }
}

void writeConsole(HANDLE console, std::wstring_view text) {
    constexpr std::size_t kChunk = 8192;  // older consoles take 64 KB at once
    DWORD written = 0;
    while (!text.empty()) {
        const auto count = static_cast<DWORD>(std::min(text.size(), kChunk));
        if (!WriteConsoleW(console, text.data(), count, &written, nullptr) || written == 0) return;
        text.remove_prefix(written);
    }
}

}  // namespace

void printText(std::string_view utf8) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    const bool isThere = output && output != INVALID_HANDLE_VALUE;
    const DWORD type = isThere ? GetFileType(output) : FILE_TYPE_UNKNOWN;
    if (type == FILE_TYPE_DISK || type == FILE_TYPE_PIPE) return writeBytes(output, utf8);
    AttachConsole(ATTACH_PARENT_PROCESS);  // fails if we already have it, or if there is none
    const auto console = ownFile(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (console) writeConsole(console.get(), wideFromUtf8(utf8));
}
