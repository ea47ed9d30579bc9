// worker_folder_fuzz.cpp - a worker with the built-in aircraft in a data folder whose files others write: a script,
// commands of any kind, a telemetry file of before. What it writes itself can be read, and it acknowledges nothing that
// was not asked.
#include <algorithm>
#include "base/number_text.h"
#include "exchange/telemetry_text.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/make_link.h"
#include "worker/worker_loop.h"

namespace {

constexpr const char* kFolder = "C:\\d";
constexpr int kMostPasses = 300;

std::string pathOf(const char* name) {
    return joinPath(kFolder, name);
}

class World {
  public:
    explicit World(FuzzInput input) : input_(input) {
        files_.trouble = [this](FileStep step, const std::string& path) {
            const bool isHeld = isHeld_ && step == FileStep::kRead && path == pathOf(kCommandFile);
            return isHeld ? FileResult{FileState::kHeld, 32} : FileResult{};
        };
        seen_ = telemetryOfBefore();
        files_.put(pathOf(kTelemetryFile), seen_);
        const auto script = input_.text(4U * input_.byte());
        files_.put(pathOf("flight.txt"), script);
        mostLines_ += std::count(script.begin(), script.end(), '\n');
        WorkerOptions options;
        options.dataDir = kFolder;
        options.link = LinkKind::kSimulate;
        options.script = pathOf("flight.txt");
        link_ = makeLink(options, files_, folder_, log_, {}, clock_.tickMs());
    }

    void run() {
        WorkerLoop loop(kFolder, files_, folder_, *link_, log_);
        for (int i = 0; i < kMostPasses && !input_.isEmpty(); i++) {
            act();
            const auto linesBefore = lines();
            const auto result = loop.pass(clock_.tickMs(), clock_.unixSeconds());
            require(result.waitMs >= 1 && result.waitMs <= kPassMs, "a wait is 1 ms to a pass");
            require(lines() <= linesBefore + mostLines_, "a pass has few lines for the log");
            clock_.advance(result.waitMs);
            if (!result.folderGone) checkTelemetry();
        }
        for (const char c : logFile_.text) require(c == '\n' || c == '\r' || c >= 0x20 || c < 0, "the log is text");
    }

  private:
    std::string telemetryOfBefore() {
        const auto kind = input_.below(3);
        const std::string bytes(input_.text(input_.below(60)));
        if (kind == 0) return bytes;
        Telemetry before;
        before.ackId = bytes;
        return kind == 1 ? writeTelemetryText(before, 0.0) : "";
    }
    std::string command() {
        const std::string id = "4242-" + std::to_string(input_.below(8));
        const char* const slots[] = {"active", "standby", "volume", "swap", "squelch"};
        const std::string targets[] = {"121500", "122800", "0.5",
                                       "1e99",   "0",      std::to_string(input_.number() % 200'000)};
        const double ages[] = {0.0, 0.0, 0.0, 9.9, 11.0, -11.0, 1e300};
        std::string text = commandText(id, static_cast<int>(input_.below(4)), slots[input_.below(5)],
                                       targets[input_.below(6)], clock_.unixSeconds() - ages[input_.below(7)]);
        if (input_.below(4) == 0) text.insert(input_.byte() % (text.size() + 1), input_.text(input_.below(20)));
        if (input_.below(8) == 0) text.resize(input_.byte() % (text.size() + 1));
        return text;
    }
    void act() {
        switch (input_.below(10)) {
            case 0:
                clock_.advance(input_.number() % 100'000'000);
                break;
            case 1:
                putCommand(input_.text());
                break;
            case 2:
                files_.remove(pathOf(kCommandFile));
                break;
            case 3:
                folder_.pretendBytes[pathOf(kCommandFile)] = input_.number();
                break;
            case 4:
                folder_.pretendBytes.clear();
                break;
            case 5:
                files_.readOnly = !files_.readOnly;
                isHeld_ = input_.flag();
                break;
            case 6:
                folder_.missesToCome = static_cast<int>(input_.below(4));
                break;
            case 7:
                clock_.advance(input_.byte() * 10U);
                break;
            default:
                putCommand(command());
        }
    }
    std::ptrdiff_t lines() const { return std::count(logFile_.text.begin(), logFile_.text.end(), '\n'); }
    void putCommand(std::string_view text) {
        files_.put(pathOf(kCommandFile), text);
        everPut_ += text;
    }
    void checkTelemetry() {
        const auto text = files_.text(pathOf(kTelemetryFile));
        if (text == seen_) return;
        seen_ = text;
        const auto read = parseTelemetry(text);
        require(readFlatJson(text).has_value() && lastAckId(text) == read.ackId, "the telemetry can be read", text);
        require(read.protocol == kTelemetryProtocol && !read.status.empty(), "the telemetry is whole", text);
        require(everPut_.find(read.ackId) != std::string::npos, "an acknowledged command was asked for", read.ackId);
    }

    FuzzInput input_;
    ManualClock clock_;
    bool isHeld_ = false;  // by others: command.json cannot be read
    MemoryFiles files_;
    MemoryFolder folder_{files_};
    MemoryLogFile logFile_;
    WorkerLog log_{logFile_, clock_};
    std::unique_ptr<SimLink> link_;
    std::string seen_;               // the telemetry checked last
    std::string everPut_;            // all commands so far
    std::ptrdiff_t mostLines_ = 12;  // in the log from one pass; a script's line may have one
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    World(FuzzInput(data, size)).run();
    return 0;
}
