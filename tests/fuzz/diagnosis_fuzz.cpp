// diagnosis_fuzz.cpp - any bytes as every file in the report: the result is text, and masked.
#include <cstdint>
#include <cstdlib>
#include "tests/fuzz/text_mutator.h"
#include "worker/diagnosis.h"
#include "worker/host_names.h"
#include "worker/user_names.h"

namespace {

const std::vector<std::string> kAccounts = {"jane", "J\xC3\xBCrgen M\xC3\xBCller"};

const std::vector<std::string> kHosts = {"simpc", "192.168.1.20"};

constexpr std::string_view kSample =
    "2026-09-21 14:13:20.250 UTC  link up: flying, simulator at simpc:500\nlink down: no answer from simpc\n"
    "no such computer: simpc.home.\naddress = \"simpc:500\"\nC:\\Users\\jane\\AppData\\Roaming\\Corvalis\n"
    "\\\\server\\share\\J\xC3\xBCrgen M\xC3\xBCller\\x\n//nas/home/jane/x\n\\\\?\\UNC\\nas\\x\nwhat is this, not "
    "192.168.1.20 500\n"
    "{\"updated\":1790000000.000,\"ok\":true,\"protocol\":2,\"status\":\"x\",\"ack_id\":\"1-1\"}\n"
    "{\"id\":\"1-1\",\"com\":1,\"slot\":\"swap\",\"target\":0,\"created\":1}\n";

std::string asIs(const std::string& narrow) {
    return narrow;
}

// The bytes as a file of each kind; how it was found depends on how many there are.
Diagnosis foundWith(const FoundFile& read, std::size_t variant) {
    Diagnosis found;
    found.accountNames = kAccounts;
    found.linkKind = "link auto, simulator at " + kHosts[0] + ":500";
    found.commandLineProblem = "unknown argument --address=" + kHosts[1] + ":500";
    found.settings = found.telemetry = found.command = found.log = read;
    found.dataFolder = read.bytes;
    FoundFile other = read;
    if (variant % 4 == 1) other = {};
    if (variant % 4 == 2) other.state = FoundFile::State::kUnreadable;
    found.workerIni = found.captureMode = found.hostInterface = found.hostAnswer = found.linkState = found.oldLog =
        other;
    if (variant % 2 == 0) return found;
    found.nowUnixSeconds = 1'790'000'000.0;
    found.workerVersion = "1.3.0";
    found.pluginVersion = found.windowsVersion = found.programFolder = read.bytes.substr(0, 200);
    found.settingsBesideDll = found.folderExists = true;
    found.folderWritable = found.otherWorkerRuns = variant % 3 == 0;
    LinkTrial trial;
    trial.status = read.bytes;
    trial.isUp = found.folderWritable;
    for (const auto& line : splitLines(read.bytes)) {
        found.entries.push_back({line, line.size() % 2 == 0, line.size(), static_cast<double>(line.size()) * 1e6});
        trial.notes.push_back(line);
        found.iniRemarks.push_back(line);
    }
    found.moreEntries = read.size;
    found.trial = trial;
    return found;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    static TextMutator mutator(kSample, "\n \\:\"");
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FoundFile file;
    file.state = FoundFile::State::kRead;
    file.bytes.assign(reinterpret_cast<const char*>(data), size);
    file.size = size + size % 2;  // the odd ones are only a part
    const Diagnosis found = foundWith(file, size % 16);
    for (const auto& line : splitLines(composeDiagnosis(found, asIs))) {
        if (readableLine(line, asIs) + "\r" != line) std::abort();  // nothing is left that must not be shown
        if (line.size() > kMaxShownLineBytes) continue;             // cut, perhaps in the middle of a mask
        if (maskUserNames(line, kAccounts) != line || maskHostNames(line, kHosts) != line) std::abort();
    }
    return 0;
}
