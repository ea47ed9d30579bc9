#include "tests/client/worker_at_work_win.h"
#include <windows.h>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "bridge/worker_command_line.h"

bool WorkerAtWork::start(const std::wstring& arguments) {
    return startWith(dataDirArgument() + L" --watch-pid " + std::to_wstring(GetCurrentProcessId()) + arguments);
}

bool WorkerAtWork::startWith(const std::wstring& arguments) {
    return program.start(L"\"" + productFile(kWorkerProgram).wstring() + L"\" " + arguments);
}

bool WorkerAtWork::isOk() const {
    return isFresh(telemetry(), SystemClock().unixSeconds());
}

bool WorkerAtWork::waitOk(std::uint64_t ms) const {
    return waitFor([&] { return isOk(); }, ms);
}

Telemetry WorkerAtWork::command(int com, const char* slot, const char* target) {
    const auto id = std::to_string(GetCurrentProcessId()) + '-' + std::to_string(++commands_);
    std::string text = "{\"id\":\"" + id + "\",\"com\":" + std::to_string(com) + ",\"slot\":\"" + slot;
    text += std::string("\",\"target\":") + target;
    text += ",\"created\":" + formatFixed(SystemClock().unixSeconds(), 3) + "}";
    replaceFile(folder.path / "command.json", text);
    Telemetry answer;
    const auto isAnswered = [&] {
        answer = telemetry();
        return answer.ackId == id;
    };
    return waitFor(isAnswered, kPatienceMs) ? answer : Telemetry{};
}
