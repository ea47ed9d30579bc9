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

std::string commandLineFor(const std::string& pluginFolder, const std::string& dataFolder, const std::string& python) {
    const bool programExists = fileExists(joinPath(pluginFolder, kWorkerProgram));
    return workerCommandLine({.pluginFolder = pluginFolder,
                              .dataFolder = dataFolder,
                              .python = python,
                              .hostProcessId = GetCurrentProcessId(),
                              .programExists = programExists});
}

// The process handle, or null.
HANDLE launchHidden(std::string commandLine, const std::string& folder) {
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process = {};
    const char* currentFolder = folder.empty() ? nullptr : folder.c_str();
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, currentFolder,
                        &startup, &process))
        return nullptr;
    CloseHandle(process.hThread);
    return process.hProcess;
}

}  // namespace

void startWorker(WorkerProcess& worker, const HostFunctions& host, const std::string& pluginFolder,
                 const std::string& dataFolder, const std::string& python) {
    stopWorker(worker);
    worker.workerJob = createKillingJob();
    worker.workerProcess = launchHidden(commandLineFor(pluginFolder, dataFolder, python), pluginFolder);
    if (!worker.workerProcess) {
        logToHost(host, "无法启动 Python worker；请在设置中确认 Python 路径");
        return;
    }
    if (worker.workerJob) AssignProcessToJobObject(worker.workerJob, worker.workerProcess);
    logToHost(host, "SimConnect worker started");
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
