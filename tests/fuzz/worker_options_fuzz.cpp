// worker_options_fuzz.cpp - a command line, one argument a line, and below the first empty line a worker.ini: what is
// understood can be used, what the command line says stands, and the address is masked wherever it is shown.
#include <algorithm>
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/text_mutator.h"
#include "worker/host_names.h"
#include "worker/worker_options.h"

namespace {

constexpr std::string_view kSample =
    "--data-dir\nC:\\Data\n--watch-pid\n4242\n--simulate\nflight.txt\n--address\nsimpc:500\n--diagnose\n"
    "--link\nxplane\n--beacon\n239.255.1.1:49707\n\n"
    "# remark\n; remark\n[worker]\nlink=auto\nlink = \"simulate\"\naddress=[fe80::1%3]:500\nscript=C:\\flight.txt\n"
    "link=simconnect\nlink=xplane\nbeacon=127.0.0.1:5000\n";

bool isSame(const std::optional<HostPort>& left, const std::optional<HostPort>& right) {
    if (!left || !right) return left.has_value() == right.has_value();
    return left->host == right->host && left->port == right->port;
}

bool isSame(const WorkerOptions& left, const WorkerOptions& right) {
    return left.dataDir == right.dataDir && left.watchPid == right.watchPid && left.link == right.link &&
           left.script == right.script && isSame(left.address, right.address) && left.beacon == right.beacon &&
           left.diagnose == right.diagnose;
}

void checkAddress(const HostPort& address) {
    require(address.port > 0 && !address.host.empty() && address.host.size() <= 253, "an address is usable");
    require(isSame(parseHostPort(hostPortText(address)), address), "an address reads back", hostPortText(address));
}

void checkShown(const WorkerOptions& options) {
    const auto shown = describeLink(options);
    constexpr std::string_view kBeginnings[] = {"link auto, ", "link simconnect, ", "link xplane, ", "link simulate, "};
    const bool isNamed = std::ranges::any_of(kBeginnings, [&](auto beginning) { return shown.starts_with(beginning); });
    require(isNamed, "the link is described", shown);
    if (!options.address || options.link == LinkKind::kSimulate) return;
    for (const auto& name : findHostNames(shown)) require(name == options.address->host, "the host is found", shown);
    const auto masked = maskHostNames(shown, findHostNames(shown));
    require(maskHostNames(masked, findHostNames(shown)) == masked, "a masked line stays as it is", masked);
}

void checkCommandLine(const WorkerOptions& options, bool isGood, const std::string& error) {
    require(isGood == error.empty(), "an error has a reason");
    if (options.address) checkAddress(*options.address);
    if (!isGood) return;
    require(!options.dataDir.empty() || options.diagnose, "there is a data folder");
    require(!options.address || options.link != LinkKind::kSimulate, "an address means a simulator");
}

void checkIni(std::string_view text, const WorkerOptions& before) {
    WorkerOptions after = before;
    const auto remarks = applyIni(text, after);
    require(remarks.size() <= 20, "there are few remarks");
    for (const auto& remark : remarks) require(remark.starts_with("worker.ini "), "a remark names the file", remark);
    require(!before.link || after.link == before.link, "the command line's link stands");
    require(!before.address || isSame(after.address, before.address), "the command line's address stands");
    require(before.script.empty() || after.script == before.script, "the command line's script stands");
    if (after.address) checkAddress(*after.address);
    const bool isPlaced = isAbsolutePath(after.script) || after.script.starts_with(before.dataDir);
    require(after.script == before.script || isPlaced, "a script of the file lies in the data folder");
    WorkerOptions again = after;
    applyIni(text, again);
    require(isSame(again, after), "a second reading changes nothing");
    checkShown(after);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    static TextMutator mutator(kSample, "\n= ");
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> arguments;
    while (!text.empty() && !text.starts_with('\n')) {
        const auto end = std::min(text.find('\n'), text.size());
        arguments.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    text.remove_prefix(std::min<std::size_t>(1, text.size()));
    WorkerOptions options;
    std::string error;
    const bool isGood = parseArguments(arguments, options, error);
    checkCommandLine(options, isGood, error);
    checkShown(options);
    checkIni(text, options);
    checkIni(text, {});
    return 0;
}
