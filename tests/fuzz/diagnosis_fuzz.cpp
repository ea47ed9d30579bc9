// diagnosis_fuzz.cpp - any bytes as every file in the report: the result is text, and masked.
#include <cstdint>
#include <cstdlib>
#include "worker/diagnosis.h"
#include "worker/host_names.h"
#include "worker/user_names.h"

namespace {

const std::vector<std::string> kAccounts = {"jane", "J\xC3\xBCrgen M\xC3\xBCller"};

const std::vector<std::string> kHosts = {"simpc", "192.168.1.20"};

std::string asIs(const std::string& narrow) {
    return narrow;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Diagnosis found;
    FoundFile file;
    file.state = FoundFile::State::kRead;
    file.bytes.assign(reinterpret_cast<const char*>(data), size);
    file.size = size;
    found.linkKind = "link auto, simulator at " + kHosts[0] + ":500";
    found.commandLineProblem = "unknown argument --address=" + kHosts[1] + ":500";
    found.settings = found.telemetry = found.command = found.log = file;
    found.dataFolder = file.bytes;
    found.accountNames = kAccounts;
    for (const auto& line : splitLines(composeDiagnosis(found, asIs))) {
        if (readableLine(line, asIs) + "\r" != line) std::abort();  // nothing is left that must not be shown
        if (line.size() > kMaxShownLineBytes) continue;             // cut, perhaps in the middle of a mask
        if (maskUserNames(line, kAccounts) != line || maskHostNames(line, kHosts) != line) std::abort();
    }
    return 0;
}
