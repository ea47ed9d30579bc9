#include "tests/xplane/simulator.h"
#include <algorithm>
#include <cassert>
#include <cmath>
#include <iterator>
#include <utility>
#include "base/number_text.h"
#include "tests/xplane/data_refs.h"

namespace xstandin {

namespace {

constexpr std::uint64_t kAwayAfterWriteMs = 2000;

// "118005", "0.4": as many decimals as it takes.
std::string numberText(float value) {
    if (!std::isfinite(value)) return std::isnan(value) ? "nan" : "infinite";
    std::string text = formatFixed(static_cast<double>(value), 4);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

}  // namespace

Simulator::Simulator(const Personality& personality, std::uint16_t port, const std::string& computer,
                     std::uint64_t nowMs)
    : personality_(&personality), nowMs_(nowMs), startMs_(nowMs), beaconMs_(nowMs) {
    beacon_.port = port;
    beacon_.computer = computer;
    become(personality);
}

void Simulator::become(const Personality& personality) {
    personality_ = &personality;
    beacon_.minor = personality.beaconMinor;
    beacon_.program = personality.program;
    beacon_.version = personality.version;
    beacon_.role = personality.role;
    habits_ = personality.habits;
    takesConnections_ = personality.takesConnections;
    writeDelayMs_ = personality.writeDelayMs;
    roughness_ = personality.roughness;
    startMs_ = nowMs_;
    frame_ = 0;
    wasAsked_ = false;
}

bool Simulator::exists(std::string_view name) const {
    const bool isLacking = !personality_->lacks.empty() && name.find(personality_->lacks) != std::string_view::npos;
    return !isLacking && (findDataRef(name) || findCommand(name));
}

void Simulator::receive(const Endpoint& from, std::string_view bytes, std::uint64_t nowMs) {
    nowMs_ = std::max(nowMs_, nowMs);
    if (!isReachable() || isDropping()) return;
    takeIn(in_.carry({{Way::kAnswer, from, std::string(bytes)}}, roughness_, nowMs_));
}

void Simulator::takeIn(std::vector<Datagram> arrived) {
    for (auto& datagram : arrived) {
        if (isReading())
            handle(datagram.peer, datagram.bytes);
        else
            unread_.push_back(std::move(datagram));
    }
}

void Simulator::handle(const Endpoint& from, std::string_view bytes) {
    if (!takesConnections_ || !isReachable()) return;
    const auto request = readRequest(bytes);
    const auto who = "client " + textOf(from) + ' ';
    switch (request.kind) {
        case RequestKind::kStrange:
            remark(who + "sends " + std::to_string(bytes.size()) + " strange bytes");
            return;
        case RequestKind::kRead:
            remark(who + "asks " + std::to_string(request.perSecond) + " times for " + request.name + " as " +
                   std::to_string(request.index));
            ask(from, request);
            return;
        case RequestKind::kWrite:
            remark(who + "write " + request.name + ' ' + numberText(request.value));
            break;
        case RequestKind::kCommand:
            remark(who + "command " + request.name);
            break;
    }
    if (!exists(request.name)) {
        remark(who + "means what there is not: " + request.name);
    } else if (personality_->onWrite == OnWrite::kCrashes) {
        leave(ActionKind::kCrash, kAwayAfterWriteMs);
    } else {
        pending_.push_back({request, nowMs_ + writeDelayMs_});
    }
}

void Simulator::ask(const Endpoint& from, const Request& request) {
    beginScript();
    if (!exists(request.name)) remark("client " + textOf(from) + " means what there is not: " + request.name);
    requests_.ask(from, request, nowMs_);
}

// At the first request: what is due at once has happened before its answer.
void Simulator::beginScript() {
    if (std::exchange(wasAsked_, true) || personality_->script.empty()) return;
    std::vector<TimedAction> script;
    std::string error;
    const bool isGood = parseScript(personality_->script, script, error);
    assert(isGood);
    if (isGood) play(std::move(script), nowMs_);
    playTimelines();
}

std::uint64_t Simulator::nextFrameMs() const {
    const double frames = static_cast<double>(frame_ + 1);
    return startMs_ + static_cast<std::uint64_t>(std::ceil(frames * 1000.0 / personality_->framesPerSecond));
}

void Simulator::advance(std::uint64_t nowMs) {
    while (nextFrameMs() <= nowMs && !isOver_) {
        nowMs_ = std::max(nowMs_, nextFrameMs());
        flyFrame();
    }
    nowMs_ = std::max(nowMs_, nowMs);
}

// A frame: what happens, then what is told of it.
void Simulator::flyFrame() {
    frame_++;
    takeIn(in_.carry({}, roughness_, nowMs_));
    if (!isReading()) return;
    for (const auto& datagram : std::exchange(unread_, {})) handle(datagram.peer, datagram.bytes);
    playTimelines();
    applyWrites();
    if (!isReachable() || isOver_) return;
    if (nowMs_ >= beaconMs_) sendBeacon();
    if (isFlightRunning_) sendReadings();
}

void Simulator::play(std::vector<TimedAction> script, std::uint64_t nowMs) {
    timelines_.push_back({std::move(script), 0, nowMs});
}

void Simulator::playTimelines() {
    std::string error;
    for (std::size_t i = 0; i < timelines_.size(); i++) {
        while (timelines_[i].next < timelines_[i].steps.size()) {
            const auto step = timelines_[i].steps[timelines_[i].next];
            if (timelines_[i].startMs + step.atMs > nowMs_) break;
            timelines_[i].next++;
            if (!act(step.action, nowMs_, error)) remark("script: " + error);
        }
    }
}

void Simulator::applyWrites() {
    while (!redraws_.empty() && redraws_.front().dueMs <= nowMs_) {
        cockpit_.radios = redraws_.front().radios;
        redraws_.pop_front();
    }
    if (isFrozen()) return;
    while (!pending_.empty() && pending_.front().dueMs <= nowMs_) {
        const auto before = cockpit_.radios;
        apply(pending_.front().request);
        pending_.pop_front();
        if (personality_->onWrite == OnWrite::kIsRedrawn && redraws_.empty())
            redraws_.push_back({before, nowMs_ + kRedrawMs});
    }
}

void Simulator::apply(const Request& request) {
    if (request.kind == RequestKind::kCommand) {
        const auto* command = findCommand(request.name);
        if (command) command->run(cockpit_, habits_, command->radio);
        return;
    }
    const auto* value = findDataRef(request.name);
    if (value && value->write) value->write(cockpit_, habits_, value->radio, request.value);
}

void Simulator::sendBeacon() {
    beaconMs_ = nowMs_ + kBeaconEveryMs;
    if (!isAnnounced_) return;
    if (personality_->isOdd) {
        for (auto& bytes : oddBeacons(beacon_)) send(Way::kBeacon, {}, std::move(bytes));
    }
    send(Way::kBeacon, {}, beaconDatagram(beacon_));
}

void Simulator::sendReadings() {
    const bool isOdd = nowMs_ < oddEndMs_;
    if (personality_->isOdd) oddity_ = static_cast<Oddity>(frame_ % std::size(kOddityWords));
    for (const auto& [client, due] : requests_.takeDue(nowMs_)) {
        const auto readings = readingsOf(due);
        if (readings.empty() || !takesConnections_) continue;
        for (auto& bytes : answersOf(readings, personality_->fifthByte)) send(Way::kAnswer, client, std::move(bytes));
        if (!isOdd && !personality_->isOdd) continue;
        // After the truth: who believes it shows it for a frame.
        auto odd = oddAnswer(oddity_, client, readings, personality_->fifthByte);
        send(odd.way, client, std::move(odd.bytes));
    }
}

std::vector<Reading> Simulator::readingsOf(const std::vector<Requests::Due>& due) const {
    std::vector<Reading> readings;
    for (const auto& [index, name] : due) {
        const auto* value = exists(name) ? findDataRef(name) : nullptr;
        const auto shown = shown_.find(name);
        if (shown != shown_.end())
            readings.push_back({index, shown->second});
        else if (value)
            readings.push_back({index, value->read(cockpit_, value->radio)});
        else if (personality_->answersZero)
            readings.push_back({index, 0.0f});
    }
    return readings;
}

void Simulator::send(Way way, const Endpoint& to, std::string bytes) {
    output_.push_back({way, to, std::move(bytes)});
}

bool Simulator::act(const Action& action, std::uint64_t nowMs, std::string& error) {
    nowMs_ = std::max(nowMs_, nowMs);
    const auto isOn = action.value != 0.0;
    // What may be no number is no number of anything.
    const double counted = std::isfinite(action.value) ? std::clamp(action.value, 0.0, 1e9) : 0.0;
    const auto whole = static_cast<std::uint32_t>(counted);
    switch (action.kind) {
        case ActionKind::kTune:
        case ActionKind::kSwap:
        case ActionKind::kVolume:
        case ActionKind::kPower:
        case ActionKind::kObey:
        case ActionKind::kTransmit:
            actOnRadio(action);
            return true;
        case ActionKind::kAvionics:
            cockpit_.hasAvionics = isOn;
            return true;
        case ActionKind::kPause:
            cockpit_.isPaused = isOn;
            return true;
        case ActionKind::kShow:
            error = findDataRef(action.text) ? "" : "no such name";
            if (error.empty()) shown_[action.text] = static_cast<float>(action.value);
            return error.empty();
        case ActionKind::kReadback:
            writeDelayMs_ = whole;
            return true;
        case ActionKind::kDrop:
            dropEndMs_ = nowMs_ + whole;
            remark("network down for " + std::to_string(whole) + " ms");
            return true;
        case ActionKind::kCrash:
        case ActionKind::kQuit:
            leave(action.kind, whole);
            return true;
        case ActionKind::kExit:
            leave(action.kind, 0);
            isOver_ = true;
            return true;
        case ActionKind::kSim:
            isFlightRunning_ = isOn;
            remark(isOn ? "flight running" : "menu");
            return true;
        case ActionKind::kStutter:
            stutterEndMs_ = nowMs_ + whole;
            remark("stutters");
            return true;
        case ActionKind::kNetwork:
            takesConnections_ = isOn;
            if (!isOn) requests_.clear();
            return true;
        case ActionKind::kBeacon:
            isAnnounced_ = isOn;
            return true;
        case ActionKind::kVersion:
            beacon_.version = static_cast<std::int32_t>(whole);
            return true;
        case ActionKind::kLose:
            roughness_.lost = whole;
            return true;
        case ActionKind::kDouble:
            roughness_.doubled = whole;
            return true;
        case ActionKind::kDelay:
            roughness_.late = whole;
            return true;
        case ActionKind::kOdd:
            oddity_ = static_cast<Oddity>(action.slot);
            oddEndMs_ = nowMs_ + whole;
            return true;
        case ActionKind::kCharacter: {
            const auto* personality = findPersonality(action.text);
            error = personality ? "" : "no such personality";
            if (!personality) return false;
            leave(ActionKind::kQuit, 0);
            become(*personality);
            return true;
        }
    }
    return false;
}

// What the pilot does at the radio itself always works: only clients' writes may be ignored.
void Simulator::actOnRadio(const Action& action) {
    auto& radio = cockpit_.radios[action.radio];
    const auto isOn = action.value != 0.0;
    switch (action.kind) {
        case ActionKind::kTune:
            (action.slot == kActive ? radio.activeKhz : radio.standbyKhz) = static_cast<std::int32_t>(action.value);
            break;
        case ActionKind::kSwap:
            std::swap(radio.activeKhz, radio.standbyKhz);
            break;
        case ActionKind::kVolume:
            radio.volume = static_cast<float>(action.value / 100.0);
            break;
        case ActionKind::kPower:
            radio.isPowered = isOn;
            break;
        case ActionKind::kObey:
            radio.obeys[action.slot] = isOn;
            break;
        default:
            cockpit_.transmitting = kTransmitsCom1 + static_cast<std::int32_t>(action.radio);
            break;
    }
}

// Nobody is told; a crash may leave half an answer behind.
void Simulator::leave(ActionKind how, std::uint64_t awayMs) {
    if (how == ActionKind::kCrash) {
        for (const auto& client : requests_.clients())
            send(Way::kAnswer, client, answersOf({{0, 127'000.0f}}, personality_->fifthByte).front().substr(0, 11));
    }
    requests_.clear();
    pending_.clear();
    redraws_.clear();
    unread_.clear();
    reachableMs_ = nowMs_ + awayMs;
    beaconMs_ = reachableMs_;
    if (personality_->versionAfter != 0) beacon_.version = personality_->versionAfter;
    if (awayMs > 0) remark("away for " + std::to_string(awayMs) + " ms");
}

std::vector<Datagram> Simulator::takeOutput() {
    auto sent = std::exchange(output_, {});
    if (isDropping()) return {};
    return out_.carry(std::move(sent), roughness_, nowMs_);
}

std::vector<Report> Simulator::takeReports() {
    return std::exchange(reports_, {});
}

void Simulator::remark(const std::string& text) {
    reports_.push_back({nowMs_, text});
}

}  // namespace xstandin
