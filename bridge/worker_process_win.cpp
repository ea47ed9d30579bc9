#include "bridge/worker_process_win.h"
#include <windows.h>
#include "base/data_files.h"
#include "base/log_line.h"
#include "bridge/worker_command_line.h"

namespace {

HANDLE createKillingJob() {
    const HANDLE job = CreateJobObjectA(nullptr, nullptr);
    if (!job) return nullptr;
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits)) return job;
    CloseHandle(job);
    return nullptr;
}

bool fileExists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// The process handle, or null with the system's error.
HANDLE launchHidden(std::string commandLine, const std::string& folder, std::uint32_t& error) {
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process = {};
    const char* currentFolder = folder.empty() ? nullptr : folder.c_str();
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, currentFolder,
                        &startup, &process)) {
        error = GetLastError();
        return nullptr;
    }
    CloseHandle(process.hThread);
    return process.hProcess;
}

}  // namespace

void startWorker(WorkerProcess& worker, const HostFunctions& host, const std::string& pluginFolder,
                 const std::string& dataFolder, const std::string& python) {
    stopWorker(worker);
    const WorkerStart start{.pluginFolder = pluginFolder,
                            .dataFolder = dataFolder,
                            .python = python,
                            .hostProcessId = GetCurrentProcessId(),
                            .programExists = fileExists(joinPath(pluginFolder, kWorkerProgram))};
    worker.isMissing = !start.programExists && !fileExists(joinPath(pluginFolder, kWorkerScript));
    worker.workerJob = createKillingJob();
    worker.startError = 0;
    worker.workerProcess = launchHidden(workerCommandLine(start), pluginFolder, worker.startError);
    if (!worker.workerProcess) {
        logToHost(host, "无法启动 Python worker；请在设置中确认 Python 路径");
        return;
    }
    if (worker.workerJob) AssignProcessToJobObject(worker.workerJob, worker.workerProcess);
    logToHost(host, "SimConnect worker started");
}

WorkerLife lookAtWorker(const WorkerProcess& worker) {
    using enum WorkerLife::State;
    if (!worker.workerProcess) return {kNotStarted, worker.startError, worker.isMissing};
    if (WaitForSingleObject(worker.workerProcess, 0) != WAIT_OBJECT_0) return {kRunning, 0, worker.isMissing};
    DWORD exitCode = 0;
    GetExitCodeProcess(worker.workerProcess, &exitCode);
    return {kEnded, exitCode, worker.isMissing};
}

void stopWorker(WorkerProcess& worker) {
    if (worker.workerJob) {
        TerminateJobObject(worker.workerJob, 0);
        CloseHandle(worker.workerJob);
        worker.workerJob = nullptr;
    }
    if (worker.workerProcess) {
        TerminateProcess(worker.workerProcess, 0);
        CloseHandle(worker.workerProcess);
        worker.workerProcess = nullptr;
    }
}
