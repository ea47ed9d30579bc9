#include "worker/simconnect/session.h"
#include <algorithm>
#include "worker/pilot_texts.h"

namespace simconnect {

namespace {

constexpr const char* kApplication = "Corvalis";
constexpr std::size_t kRememberedPackets = 512;  // several times what a new flight sends
constexpr std::size_t kMaxNotes = 50;            // per connection: endless complaints do not fill the log
constexpr std::uint32_t kFirstKeyEventId = 100;

// By their event ids, which begin with 1. The data of the pauses: 0 = none; a bit for each kind of pause, or just 1.
enum SystemEvent : std::uint32_t { kSim = 1, kAircraftLoaded, kPauseByKind, kPause };
constexpr const char* kSystemEvents[] = {"Sim", "AircraftLoaded", "Pause_EX1", "Pause"};

}  // namespace

Session::Session(Transport& transport, SessionPlan plan)
    : connection_(transport, kApplication),
      plan_(plan),
      readings_(plan.variables.size()),
      keyEventKnown_(plan.keyEvents.size()) {}

void Session::poll(std::uint64_t nowMs) {
    connection_.poll(nowMs);
    collectNotes();
    if (isOpen() && connection_.openings() != openings_) setUp(nowMs);
    while (isOpen()) {
        const auto packet = connection_.next();
        if (!packet) break;
        handle(*packet, nowMs);
    }
    if (isOpen()) startAfresh(nowMs);
    if (isOpen()) watchAnswers(nowMs);
    collectNotes();
    if (!isOpen()) {
        simRunning_.reset();
        isPaused_ = false;
        forgetReadings();
    }
}

void Session::setUp(std::uint64_t nowMs) {
    openings_ = connection_.openings();
    aircraft_++;
    sent_.clear();
    noted_.clear();
    requesting_ = false;
    simRunning_.reset();
    isPaused_ = false;
    freshStart_ = {};
    question_ = simQuestion_ = answered_ = 0;
    unansweredMs_.reset();
    isDeaf_ = false;
    std::fill(readings_.begin(), readings_.end(), Reading{});
    std::fill(keyEventKnown_.begin(), keyEventKnown_.end(), true);
    forgetReadings();
    for (std::size_t i = 0; i < plan_.keyEvents.size(); i++) {
        const auto id = kFirstKeyEventId + static_cast<std::uint32_t>(i);
        connection_.send(encodeMapEvent(stampFor(Sent::kKeyEventMap, i), id, plan_.keyEvents[i]));
    }
    for (std::size_t i = 0; i < plan_.variables.size(); i++) {
        const auto& variable = plan_.variables[i];
        connection_.send(encodeVariable(stampFor(Sent::kVariable, i), static_cast<std::uint32_t>(i + 1), variable.name,
                                        variable.units, variable.type));
    }
    for (const auto event : {kSim, kAircraftLoaded, kPauseByKind}) subscribe(event);
    askWhetherSimRuns(nowMs);
}

void Session::subscribe(std::uint32_t systemEvent) {
    const std::size_t row = systemEvent - 1;
    connection_.send(encodeSubscribe(stampFor(Sent::kSystemEvent, row), systemEvent, kSystemEvents[row]));
}

// Questions have a number space of their own: their answers come in another kind of packet. What is asked does not
// matter, only that there is an answer; the events say sooner whether the simulator runs.
void Session::ask(std::uint64_t nowMs) {
    askedMs_ = nowMs;
    if (!unansweredMs_) unansweredMs_ = nowMs;
    connection_.send(encodeStateRequest(stampFor(Sent::kSystemState, 0), ++question_, "Sim"));
}

// Where no event may have said so: on a new connection, and after a long silence.
void Session::askWhetherSimRuns(std::uint64_t nowMs) {
    ask(nowMs);
    simQuestion_ = question_;
}

void Session::onAnswer(const StatePacket& answer, std::uint64_t nowMs) {
    if (answer.requestId == 0 || answer.requestId > question_) return;
    answered_ = std::max(answered_, answer.requestId);
    unansweredMs_ = answered_ == question_ ? std::nullopt : std::optional(nowMs);
    if (answer.requestId == simQuestion_ || !simRunning_) setSimRunning(answer.value != 0);
}

// There is no other keep-alive. A loading simulator may be silent for long; an unplugged one stays silent. One that
// goes on speaking but answers nothing no longer reads.
void Session::watchAnswers(std::uint64_t nowMs) {
    if (nowMs - connection_.heardMs() >= kDeadMs) return connection_.drop("nothing heard for two minutes", nowMs);
    const auto unansweredMs = unansweredMs_ ? nowMs - *unansweredMs_ : 0;
    const bool speaks = nowMs - connection_.heardMs() < unansweredMs / 2;
    if (!isDeaf_ && answered_ > 0 && unansweredMs >= kUnreadMs && speaks) {
        isDeaf_ = true;
        notes_.emplace_back(pilot::kDoesNotRead);
    }
    if (isDeaf_ && !unansweredMs_) {
        isDeaf_ = false;
        notes_.emplace_back("the simulator reads again");
    }
    if (nowMs - std::max(connection_.heardMs(), askedMs_) >= kPingMs) return askWhetherSimRuns(nowMs);
    if (nowMs - connection_.heardMs() < kPingMs / 2 && nowMs - askedMs_ >= kPingMs) ask(nowMs);
}

// A missing variable stays missing: which ones exist depends on the simulator, not on the aircraft.
void Session::forgetReadings() {
    for (auto& reading : readings_) {
        if (reading.state == Reading::State::kKnown) reading = {};
    }
    dataMs_.reset();
}

// Answers carry the number of their request, and each generation has its own: values still on their way from the
// previous aircraft are not taken for the new one's.
std::uint32_t Session::requestBase() const {
    return generation_ * static_cast<std::uint32_t>(2 * plan_.variables.size() + 1);
}

void Session::requestAll(std::uint64_t nowMs) {
    stopRequests();
    forgetReadings();
    generation_++;
    requesting_ = true;
    requestedMs_ = nowMs;
    heartbeat_ = 0;
    while (heartbeat_ < readings_.size() && readings_[heartbeat_].state == Reading::State::kMissing) heartbeat_++;
    for (std::size_t i = 0; i < readings_.size(); i++) requestVariable(i, true);
    requestHeartbeat(Period::kVisualFrame);
}

void Session::stopRequests() {
    if (!requesting_) return;
    requesting_ = false;
    for (std::size_t i = 0; i < readings_.size(); i++) requestVariable(i, false);
    requestHeartbeat(Period::kNever);
}

// Changes at the end of their frame; besides, everything every five seconds, in case a change is ever lost.
void Session::requestVariable(std::size_t variable, bool running) {
    if (readings_[variable].state == Reading::State::kMissing) return;
    const auto define = static_cast<std::uint32_t>(variable + 1);
    const auto id = requestBase() + 2 * static_cast<std::uint32_t>(variable) + 1;
    connection_.send(encodeDataRequest(stampFor(Sent::kRequest, variable),
                                       {id, define, running ? Period::kVisualFrame : Period::kNever, running, 0}));
    connection_.send(encodeDataRequest(
        stampFor(Sent::kRequest, variable),
        {id + 1, define, running ? Period::kSecond : Period::kNever, false, running ? kRereadSkip : 0}));
}

void Session::requestHeartbeat(Period period) {
    if (heartbeat_ >= readings_.size()) return;
    const auto id = requestBase() + static_cast<std::uint32_t>(2 * readings_.size()) + 1;
    connection_.send(encodeDataRequest(stampFor(Sent::kRequest, heartbeat_),
                                       {id, static_cast<std::uint32_t>(heartbeat_ + 1), period, false,
                                        period == Period::kNever ? 0 : kHeartbeatSkip}));
}

Stamp Session::stampFor(Sent kind, std::size_t index) {
    const auto stamp = connection_.stamp();
    sent_.push_back({stamp.sendId, kind, index});
    if (sent_.size() > kRememberedPackets) sent_.pop_front();
    return stamp;
}

void Session::handle(const Received& packet, std::uint64_t nowMs) {
    if (std::holds_alternative<QuitPacket>(packet)) connection_.quit(nowMs);
    if (const auto* data = std::get_if<DataPacket>(&packet)) onData(*data, nowMs);
    if (const auto* event = std::get_if<EventPacket>(&packet)) onEvent(*event);
    if (const auto* exception = std::get_if<ExceptionPacket>(&packet)) onException(*exception);
    if (const auto* broken = std::get_if<BrokenPacket>(&packet)) {
        noteOnce("a packet of kind " + std::to_string(broken->id) + " is too short and was ignored");
    }
    if (const auto* state = std::get_if<StatePacket>(&packet)) onAnswer(*state, nowMs);
}

void Session::onData(const DataPacket& data, std::uint64_t nowMs) {
    const auto first = requestBase() + 1;
    if (!requesting_ || freshStart_.isDue || data.requestId < first || data.requestId - first > 2 * readings_.size())
        return;
    const auto offset = data.requestId - first;
    const std::size_t variable = offset == 2 * readings_.size() ? heartbeat_ : offset / 2;
    if (variable == readings_.size()) return;  // a heartbeat from before the last variable turned out to be missing
    auto& reading = readings_[variable];
    const auto value = decodeValue(data.values, plan_.variables[variable].type);
    if (!value || reading.state == Reading::State::kMissing) return;
    reading = {Reading::State::kKnown, *value};
    dataMs_ = nowMs;
}

void Session::onEvent(const EventPacket& event) {
    if (event.eventId == kSim) setSimRunning(event.data != 0);
    if (event.eventId == kPauseByKind || event.eventId == kPause) isPaused_ = event.data != 0;
    if (event.eventId != kAircraftLoaded) return;
    // What held for the previous aircraft no longer does, and its requests may be gone with it.
    aircraft_++;
    forgetReadings();
    freshStart_.isDue = true;
    freshStart_.loaded++;
    freshStart_.file = event.file;
}

void Session::setSimRunning(bool running) {
    if (simRunning_ == running) return;
    simRunning_ = running;
    freshStart_.isDue = running;
    if (running) {
        aircraft_++;
        return;
    }
    stopRequests();
    forgetReadings();
}

// A simulator may report aircraft or flights by the thousand. Until the fresh start that the last of them calls for,
// nothing that arrives counts.
void Session::startAfresh(std::uint64_t nowMs) {
    auto& fresh = freshStart_;
    const auto isTime = [&](std::optional<std::uint64_t> lastMs) {
        return !lastMs || nowMs - *lastMs >= kFreshStartMs;
    };
    if (fresh.loaded > 0 && isTime(fresh.noteMs)) {
        const auto count = fresh.loaded > 1 ? " (the last of " + std::to_string(fresh.loaded) + ')' : std::string();
        notes_.push_back("aircraft loaded" + count + (fresh.file.empty() ? "" : ": " + fresh.file));
        fresh.loaded = 0;
        fresh.noteMs = nowMs;
    }
    if (!fresh.isDue || !simRunning_.value_or(false) || !isTime(fresh.startMs)) return;
    fresh.isDue = false;
    fresh.startMs = nowMs;
    requestAll(nowMs);
}

void Session::onException(const ExceptionPacket& exception) {
    const auto sent = std::find_if(sent_.begin(), sent_.end(),
                                   [&](const SentPacket& packet) { return packet.sendId == exception.sendId; });
    const auto code = "exception " + std::to_string(exception.code) + ", " + std::string(exceptionName(exception.code));
    if (exception.sendId == 0 || sent == sent_.end()) return noteOnce("the simulator reports " + code);
    // A request for a variable known to be missing may be refused too; that is not worth a note.
    const bool news = sent->kind != Sent::kRequest || readings_[sent->index].state != Reading::State::kMissing;
    if (news) noteOnce("the simulator refuses " + describe(*sent) + " (" + code + ')');
    if (sent->kind == Sent::kKeyEventMap) keyEventKnown_[sent->index] = false;
    if (sent->kind == Sent::kVariable) onMissingVariable(sent->index);
    if (sent->kind == Sent::kSystemEvent && sent->index + 1 == kPauseByKind) subscribe(kPause);
}

void Session::onMissingVariable(std::size_t variable) {
    readings_[variable] = {Reading::State::kMissing, 0.0};
    if (!requesting_ || variable != heartbeat_) return;
    while (heartbeat_ < readings_.size() && readings_[heartbeat_].state == Reading::State::kMissing) heartbeat_++;
    requestHeartbeat(Period::kVisualFrame);
}

bool Session::isAllRead() const {
    return std::none_of(readings_.begin(), readings_.end(),
                        [](const Reading& reading) { return reading.state == Reading::State::kAwaited; });
}

bool Session::sendKeyEvent(std::size_t event, std::uint32_t data, std::uint64_t nowMs) {
    if (!isOpen() || !keyEventKnown_[event]) return false;
    const auto id = kFirstKeyEventId + static_cast<std::uint32_t>(event);
    connection_.send(encodeKeyEvent(stampFor(Sent::kKeyEvent, event), id, data));
    ask(nowMs);
    return true;
}

std::string Session::describe(const SentPacket& sent) const {
    switch (sent.kind) {
        case Sent::kVariable:
            return std::string("the variable ") + plan_.variables[sent.index].name;
        case Sent::kRequest:
            return std::string("to report ") + plan_.variables[sent.index].name;
        case Sent::kKeyEventMap:
        case Sent::kKeyEvent:
            return std::string("the key event ") + plan_.keyEvents[sent.index];
        case Sent::kSystemEvent:
            return std::string("the system event ") + kSystemEvents[sent.index];
        case Sent::kSystemState:
            return "the system state Sim";
    }
    return {};
}

void Session::noteOnce(const std::string& line) {
    if (noted_.size() < kMaxNotes && noted_.insert(line).second) notes_.push_back(line);
}

void Session::collectNotes() {
    for (auto& line : connection_.takeNotes()) notes_.push_back(std::move(line));
}

}  // namespace simconnect
