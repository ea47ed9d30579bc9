#include "tests/soak/soak_run_win.h"
#include <windows.h>
#include <cstdio>
#include "base/number_text.h"
#include "tests/soak/soak_world.h"
#include "tests/soak/stopwatch_win.h"
#include "tests/soak/system_leaks_win.h"

namespace {

constexpr std::uint64_t kHangsMs = 60'000;  // what takes longer hangs, however busy the machine is
constexpr std::uint64_t kHangsNs = kHangsMs * 1'000'000;
constexpr std::uint64_t kSecondNs = 1'000'000'000;
constexpr int kMostSaid = 50;
constexpr std::size_t kFewestLines = 2 * kFewestSamples;  // without them there is no verdict
constexpr std::size_t kLinesInAShift = 3;                 // from one writer of the telemetry to the other
constexpr std::size_t kTitlesEvery = 30;                  // lines

std::size_t lineCount(const SoakOptions& options) {
    return static_cast<std::size_t>(options.minutes * 60.0 / options.everySeconds) + kFewestLines;
}

}  // namespace

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void Complaints::add(const std::string& text) {
    if (count_++ < kMostSaid) say("WRONG: " + text);
}

void ClientLog::add(const HostCall& call) {
    MutexLock lock(mutex_);
    stream_ << call.atMs << ' ' << call.number << ' ' << call.text << std::endl;
}

SoakRun::SoakRun(const SoakOptions& options, std::uint64_t seed, const std::filesystem::path& outFolder,
                 Progress& progress)
    : options_(options),
      outFolder_(outFolder),
      progress_(progress),
      appData_(L"APPDATA", (outFolder_ / "appdata").wstring()),
      log_(outFolder_ / "client.log"),
      csv_(outFolder_ / "soak.csv", std::ios::binary),
      dice_(seed),
      leak_(options.leak),
      record_(lineCount(options)) {}

int SoakRun::run() {
    if (!start()) return 1;
    if (!pilot_->tour()) complaints_.add("the windows do not come to rest after the tour");
    fly();
    end();
    progress_.at("the verdict");
    return verdict();
}

bool SoakRun::start() {
    progress_.at("a look at the system");
    lookForSystemLeaks();
    progress_.at("the start");
    std::filesystem::create_directories(dataFolder());
    csv_ << csvTitles() << std::flush;
    host_.keepNothing();
    host_.setBeforeCall([this](const HostCall& call) {
        if (call.function == "getClientSelfVariableAsInt") passes_.onPass(GetCurrentThreadId(), nowNs());
        if (call.function == "logMessage") log_.add(call);
    });
    if (!plugin_.load(productFile("corvalis_win64.dll")) || !plugin_.introduce(host_)) {
        say("The plugin does not load: " + plugin_.error());
        return false;
    }
    if (!ownMemory_.emplace().isCounting()) {
        say("The plugin has its memory from elsewhere");
        return false;
    }
    plugin_.exports().registerPluginID(kSoakPluginId);
    server_.emplace(host_, plugin_, passes_, dice_.next());
    plugin_.exports().init();
    std::vector<std::uint32_t> workers;
    const bool isComplete = waitFor(
        [&] {
            workers = childProcesses(L"hopline_worker.exe");
            return !workers.empty() && findPanel();
        },
        kHangsMs);
    if (!isComplete) {
        say("The panel or the worker does not start");
        plugin_.exports().shutdown();
        return false;
    }
    look_.emplace(workers.front());
    pilot_.emplace(plugin_, dataFolder() / "settings.ini", progress_, dice_.next());
    answers_.emplace(findPanel());
    mill_.emplace(dataFolder(), dice_.next());
    shift_.emplace(dice_.next());
    server_->open();
    crew_.emplace(plugin_.exports(), kServers[0], dice_.next());
    return true;
}

void SoakRun::lookForSystemLeaks() {
    const SystemLeaks leaks = findSystemLeaks();
    if (leaks.areNone()) return;
    say(leaks.inWords());
    record_.leaveOutSystemMemory();
}

// From here on times count; what the tour has left in the figures is thrown away with the first look.
void SoakRun::fly() {
    SoakLine warmUp;
    takeFigures(warmUp);
    startNs_ = nowNs();
    const auto everyNs = static_cast<std::uint64_t>(options_.everySeconds * 1e9);
    const std::uint64_t overNs = startNs_ + static_cast<std::uint64_t>(options_.minutes * 60e9);
    for (std::size_t i = 0; i < kFewestLines || nowNs() + everyNs / 2 < overNs; i++) {
        const std::uint64_t dueNs = nowNs() + everyNs;
        if (i % kLinesInAShift == 0) changeWriter();
        flyUntil(dueNs);
        if (!pilot_->rest()) complaints_.add("the windows do not come to rest");
        takeLine(i);
    }
}

void SoakRun::changeWriter() {
    const bool isReal = !shift_->isOn();
    mill_->setAtWork(!isReal);
    if (isReal) {
        look_->releaseWorker();
        if (!shift_->begin()) complaints_.add("the simulator does not start");
    } else {
        if (!look_->holdWorker()) complaints_.add("the worker cannot be held");
        shift_->end();
    }
}

void SoakRun::flyUntil(std::uint64_t timeNs) {
    while (nowNs() < timeNs) {
        pilot_->act();
        shift_->act();
        if (nowNs() >= nextLeakNs_) {
            leak_.grow();
            nextLeakNs_ = nowNs() + kSecondNs;
        }
        for (int pauses = dice_.between(1, 20); pauses > 0 && nowNs() < timeNs; pauses--) pauseBriefly();
    }
}

void SoakRun::takeFigures(SoakLine& line) {
    progress_.at("taking the figures");
    const AudioFigures audio = crew_->take();
    line.blocks = audio.blocks;
    line.doneBlocks = audio.doneBlocks;
    line.dueBlocks = audio.dueBlocks;
    line.lateBlocks = audio.lateBlocks;
    line.shapedBlocks = audio.shapedBlocks;
    line.uiAnswers = answers_->answers().take();
    line.hostCalls = server_->calls().take();
    line.passGaps = passes_.gaps().take();
    look_->fill(line, GetWindowThreadProcessId(findPanel(), nullptr), passes_.threadId());
    for (SharedTimes* const times : {&answers_->answers(), &server_->calls(), &passes_.gaps()}) times->leaveOut();
}

void SoakRun::takeLine(std::size_t number) {
    SoakLine line;
    takeFigures(line);
    line.atSeconds = static_cast<double>(nowNs() - startNs_) / 1e9;
    line.isWithSimulator = shift_->isOn();
    line.phase = shift_->isOn() ? shift_->personality() : "hostile files";
    if (number % kTitlesEvery == 0) say(lineTitles());
    say(lineText(line));
    csv_ << csvRow(line) << std::flush;
    complainOf(line);
    addTimes(sum_, line);
    record_.add(line);
}

void SoakRun::complainOf(const SoakLine& line) {
    if (line.doneBlocks == 0) complaints_.add("no block of voice was played");
    if (line.uiAnswers.worst() >= kHangsNs) complaints_.add("the windows hang");
    if (line.hostCalls.worst() >= kHangsNs) complaints_.add("an event hangs");
    if (line.passGaps.worst() >= kHangsNs) complaints_.add("the poll thread hangs");
    if (!look_->isWorkerRunning()) complaints_.add("the worker has ended");
}

// The voice goes on until the plugin has shut down, as a client's does.
void SoakRun::end() {
    progress_.at("the end of all activity");
    endNs_ = nowNs();
    look_->releaseWorker();
    server_->stop();
    mill_->stop();
    answers_->stop();
    progress_.at("the shutdown");
    const std::uint64_t startMs = systemTickMs();
    plugin_.exports().shutdown();
    shutdownMs_ = systemTickMs() - startMs;
    if (shutdownMs_ >= kHangsMs) complaints_.add("the shutdown hangs");
    crew_->stop();
    if (!waitFor([&] { return !look_->isWorkerRunning(); }, kHangsMs))
        complaints_.add("the worker goes on after the shutdown");
    shift_->end();
    progress_.at("the unloading");
    plugin_.unload();
    for (const auto& problem : host_.problems()) complaints_.add("rule of the host broken: " + problem);
    for (const auto& leak : host_.leaks()) complaints_.add("not given back to the host: " + leak);
}

std::vector<WorkCount> SoakRun::work() const {
    return {{"deeds of the pilot", pilot_->deeds()},
            {"drags of the panel", pilot_->drags()},
            {"dialogs", pilot_->dialogs()},
            {"languages with themes", pilot_->looks()},
            {"texts", server_->texts()},
            {"talks", server_->talks()},
            {"tab switches", server_->tabSwitches()},
            {"reconnects", server_->reconnects()},
            {"actions in the simulator", shift_->actions()},
            {"looks at telemetry from it", mill_->heard()},
            {"telemetry files", mill_->writes()},
            {"torn or hostile ones", mill_->hostileWrites()},
            {"blocks through the radio", sum_.shapedBlocks},
            {"answers by the windows", sum_.uiAnswers.count()},
            {"passes of the poll thread", sum_.passGaps.count()}};
}

int SoakRun::verdict() {
    say("");
    for (const std::string& text : timesTexts(sum_)) say(text);
    say("shutdown      " + std::to_string(shutdownMs_) + " ms");
    say(workText(work()));
    for (const std::string& undone : undoneWork(work())) complaints_.add("none of these: " + undone);
    int growing = 0, unknown = 0;
    for (const GrowthFinding& finding : record_.judge()) {
        say(findingText(finding));
        growing += finding.grows;
        unknown += !finding.line.isKnown;
    }
    const bool isGood = growing + unknown + complaints_.count() == 0;
    say((isGood ? "Soaked: nothing grew, hung or broke in " : "Soak FAILED after ") +
        formatFixed(static_cast<double>(endNs_ - startNs_) / 60e9, 1) + " minutes: " + std::to_string(growing) +
        " grew, " + std::to_string(unknown) + " unknown, " + std::to_string(complaints_.count()) + " went wrong");
    return isGood ? 0 : 1;
}
