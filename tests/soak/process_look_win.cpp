#include "tests/soak/process_look_win.h"
#include <windows.h>
// psapi.h needs windows.h before it.
#include <psapi.h>
#include <algorithm>
#include "tests/client/resource_count_win.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/own_memory_win.h"
#include "tests/soak/stopwatch_win.h"

// From ntdll; no header declares them.
extern "C" LONG WINAPI NtSuspendProcess(HANDLE process);
extern "C" LONG WINAPI NtResumeProcess(HANDLE process);

namespace {

constexpr DWORD kSuspendResume = 0x0800;  // PROCESS_SUSPEND_RESUME
constexpr int kLooks = 4;
constexpr DWORD kBetweenLooksMs = 30;

std::uint64_t nanoseconds(const FILETIME& time) {
    return (std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime) * 100;
}

// usedNs and lookedNs: of the last look, which this one replaces. 0 at the first.
double loadSince(std::uint64_t usedNow, std::uint64_t& usedNs, std::uint64_t& lookedNs) {
    const std::uint64_t now = nowNs();
    const bool isFirst = lookedNs == 0;
    const auto used = static_cast<double>(usedNow - usedNs), passed = static_cast<double>(now - lookedNs);
    usedNs = usedNow;
    lookedNs = now;
    return isFirst ? 0.0 : used / passed;
}

std::uint64_t privateBytesOf(HANDLE process) {
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    return counters.PrivateUsage > 0 ? counters.PrivateUsage : counters.PagefileUsage;
}

void fillCounts(SoakLine& line, HANDLE worker) {
    const ResourceCount resources = countResources();
    line.privateBytes = resources.privateBytes;
    line.heapBytes = heapBytes();
    line.ownBytes = OwnMemory::bytes();
    line.ownBlocks = OwnMemory::blocks();
    line.workerBytes = privateBytesOf(worker);
    line.gdiObjects = resources.gdiObjects;
    line.userObjects = resources.userObjects;
    line.handles = resources.handles;
    line.threads = threadCount();
}

}  // namespace

void ThreadLoad::close() {
    if (thread_) CloseHandle(thread_);
    thread_ = nullptr;
    lookedNs_ = 0;
    usedNs_ = 0;
}

double ThreadLoad::take(std::uint32_t threadId) {
    if (threadId != threadId_) {
        close();
        threadId_ = threadId;
        thread_ = threadId == 0 ? nullptr : OpenThread(THREAD_QUERY_INFORMATION, FALSE, threadId);
    }
    FILETIME created, exited, kernel, user;
    if (!thread_ || !GetThreadTimes(thread_, &created, &exited, &kernel, &user)) return 0.0;
    return loadSince(nanoseconds(kernel) + nanoseconds(user), usedNs_, lookedNs_);
}

ProcessLook::ProcessLook(std::uint32_t workerId)
    : worker_(
          OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | kSuspendResume, FALSE, workerId)) {}

ProcessLook::~ProcessLook() {
    releaseWorker();
    if (worker_) CloseHandle(worker_);
}

bool ProcessLook::isWorkerRunning() const {
    return worker_ && WaitForSingleObject(worker_, 0) == WAIT_TIMEOUT;
}

bool ProcessLook::holdWorker() {
    if (worker_ && !isHeld_) isHeld_ = NtSuspendProcess(worker_) >= 0;
    return isHeld_;
}

void ProcessLook::releaseWorker() {
    if (isHeld_) NtResumeProcess(worker_);
    isHeld_ = false;
}

double ProcessLook::takeProcessLoad() {
    FILETIME created, exited, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user)) return 0.0;
    return loadSince(nanoseconds(kernel) + nanoseconds(user), usedNs_, lookedNs_);
}

void ProcessLook::fill(SoakLine& line, std::uint32_t uiThread, std::uint32_t pollThread) {
    line.uiLoad = ui_.take(uiThread);
    line.pollLoad = poll_.take(pollThread);
    line.processLoad = takeProcessLoad();
    fillCounts(line, worker_);
    for (int i = 1; i < kLooks; i++) {
        Sleep(kBetweenLooksMs);
        SoakLine again;
        fillCounts(again, worker_);
        for (auto SoakLine::*const bytes : {&SoakLine::privateBytes, &SoakLine::heapBytes, &SoakLine::workerBytes})
            line.*bytes = std::min(line.*bytes, again.*bytes);
        for (auto SoakLine::*const own : {&SoakLine::ownBytes, &SoakLine::ownBlocks})
            line.*own = std::min(line.*own, again.*own);
        for (auto SoakLine::*const count :
             {&SoakLine::gdiObjects, &SoakLine::userObjects, &SoakLine::handles, &SoakLine::threads})
            line.*count = std::min(line.*count, again.*count);
    }
}
