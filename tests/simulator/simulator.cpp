#include "tests/simulator/simulator.h"
#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace standin {

namespace {

constexpr std::uint64_t kAwayAfterWriteMs = 2000;
constexpr std::size_t kNoiseBytes = 200;  // per frame
constexpr int kFloodPerFrame = 40;

}  // namespace

Simulator::Simulator(const Personality& personality, std::uint64_t nowMs)
    : personality_(&personality), nowMs_(nowMs), startMs_(nowMs), writeDelayMs_(personality.writeDelayMs) {
    makeAircraft("twin", aircraft_);
}

int Simulator::connect(std::uint64_t nowMs) {
    nowMs_ = std::max(nowMs_, nowMs);
    Client client;
    SimulatorDesk& desk = *this;
    client.session = std::make_unique<Session>(desk, *personality_);
    client.line = RoughLine(static_cast<std::uint32_t>(++lastClient_));
    clients_.emplace(lastClient_, std::move(client));
    remark("client " + std::to_string(lastClient_) + " connected");
    return lastClient_;
}

void Simulator::receive(int number, std::string_view bytes, std::uint64_t nowMs) {
    const auto client = clients_.find(number);
    if (client == clients_.end()) return;
    nowMs_ = std::max(nowMs_, nowMs);
    if (!isReading() || !client->second.unread.empty()) {
        client->second.unread += bytes;
        return;
    }
    speaking_ = number;
    client->second.session->receive(bytes);
    speaking_ = 0;
    // Not earlier: the session must outlive its own packet.
    if (std::exchange(isLeaving_, false)) {
        leave(personality_->onWrite == OnWrite::kQuits ? ActionKind::kQuit : ActionKind::kCrash, kAwayAfterWriteMs);
    }
    flush(false);
}

// After it has not read for a while.
void Simulator::readOn() {
    std::map<int, std::string> unread;
    for (auto& [number, client] : clients_) unread[number] = std::exchange(client.unread, {});
    for (const auto& [number, bytes] : unread) {
        if (!bytes.empty()) receive(number, bytes, nowMs_);  // in the order in which it was sent
    }
}

void Simulator::disconnect(int client, std::uint64_t nowMs) {
    nowMs_ = std::max(nowMs_, nowMs);
    if (clients_.erase(client) > 0) remark("client " + std::to_string(client) + " gone");
}

std::uint64_t Simulator::nextFrameMs() const {
    return startMs_ +
           static_cast<std::uint64_t>(std::ceil(static_cast<double>(frame_ + 1) * 1000.0 / kFramesPerSecond));
}

void Simulator::advance(std::uint64_t nowMs) {
    while (nextFrameMs() <= nowMs && !isOver_) {
        nowMs_ = std::max(nowMs_, nextFrameMs());
        flyFrame();
    }
    nowMs_ = std::max(nowMs_, nowMs);
}

// A frame: what happens, then the events, then the data.
void Simulator::flyFrame() {
    frame_++;
    if (nowMs_ < stutterEndMs_) return;
    if (isReading()) readOn();
    playTimelines();
    if (nowMs_ < floodEndMs_) {
        for (int i = 0; i < kFloodPerFrame; i++) reportLoaded();
    }
    applyWrites();
    const auto second = frame_ % 30;
    for (auto& [number, client] : clients_) {
        auto& session = *client.session;
        if (!session.isOpen()) continue;
        if (second == 0) session.raiseSystemEvent("1sec", 0);
        if (frame_ % 120 == 0) session.raiseSystemEvent("4sec", 0);
        if (frame_ % 5 == 0) session.raiseSystemEvent("6Hz", 0);
        session.raiseFrameEvent(static_cast<float>(kFramesPerSecond));
        session.endFrame({nowMs_, isPaused_, static_cast<double>(frame_) / kFramesPerSecond, !isFrozen()});
    }
    flush(true);
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

bool Simulator::act(const Action& action, std::uint64_t nowMs, std::string& error) {
    nowMs_ = std::max(nowMs_, nowMs);
    auto& radio = aircraft_.radios[action.radio];
    const auto isOn = action.value != 0.0;
    switch (action.kind) {
        // What the pilot does at the radio itself always works: only clients' writes may be ignored.
        case ActionKind::kTune:
            (action.slot == kActive ? radio.activeHz : radio.standbyHz) = static_cast<std::uint32_t>(action.value);
            return true;
        case ActionKind::kSwap:
            std::swap(radio.activeHz, radio.standbyHz);
            return true;
        case ActionKind::kVolume:
            radio.volumePercent = std::min(action.value, 100.0);
            return true;
        case ActionKind::kPower:
            radio.isPowered = isOn;
            return true;
        case ActionKind::kSpacing:
            radio.is833 = isOn;
            return true;
        case ActionKind::kObey:
            radio.obeys[action.slot] = isOn;
            return true;
        case ActionKind::kReadback:
            writeDelayMs_ = static_cast<std::uint32_t>(action.value);
            return true;
        case ActionKind::kDrop:
        case ActionKind::kCrash:
        case ActionKind::kQuit:
            leave(action.kind, static_cast<std::uint64_t>(action.value));
            return true;
        case ActionKind::kExit:
            leave(ActionKind::kQuit, 0);
            isOver_ = true;
            return true;
        case ActionKind::kSim:
            setFlightRunning(isOn);
            return true;
        case ActionKind::kPause:
            isPaused_ = isOn;
            for (auto& [number, client] : clients_) {
                client.session->raiseSystemEvent("Pause", isOn);
                client.session->raiseSystemEvent("Pause_EX1", isOn ? kWholePause : 0);
            }
            return true;
        case ActionKind::kStutter:
            stutterEndMs_ = nowMs_ + static_cast<std::uint64_t>(action.value);
            remark("stutters");
            return true;
        case ActionKind::kDeaf:
            deafEndMs_ = nowMs_ + static_cast<std::uint64_t>(action.value);
            remark("reads nothing");
            return true;
        case ActionKind::kFlood:
            floodEndMs_ = nowMs_ + static_cast<std::uint64_t>(action.value);
            remark("reports aircraft without end");
            return true;
        case ActionKind::kLoad: {
            Aircraft aircraft;
            error = makeAircraft(action.text, aircraft) ? "" : "no such aircraft";
            if (error.empty()) load(aircraft);
            return error.empty();
        }
        case ActionKind::kCharacter: {
            const auto* personality = findPersonality(action.text);
            error = personality ? "" : "no such personality";
            if (!personality) return false;
            leave(ActionKind::kDrop, 0);  // sessions keep the personality they began with
            personality_ = personality;
            writeDelayMs_ = personality->writeDelayMs;
            wasOpened_ = false;
            return true;
        }
        case ActionKind::kEvent: {
            const auto* event = findKeyEvent(action.text);
            error = event ? "" : "no such key event";
            if (event) press(*event, static_cast<std::uint32_t>(action.value));
            return event != nullptr;
        }
    }
    return false;
}

void Simulator::setFlightRunning(bool running) {
    if (running == isFlightRunning_) return;
    isFlightRunning_ = running;
    for (auto& [number, client] : clients_) {
        client.session->raiseSystemEvent("Sim", running);
        client.session->raiseSystemEvent(running ? "SimStart" : "SimStop", 0);
    }
    remark(running ? "flight running" : "menu");
}

void Simulator::load(const Aircraft& aircraft) {
    aircraft_ = aircraft;
    pending_.clear();
    reportLoaded();
    remark("aircraft " + aircraft.title);
}

void Simulator::reportLoaded() {
    for (auto& [number, client] : clients_) {
        client.session->changeAircraft();
        client.session->raiseFileEvent("AircraftLoaded", aircraft_.file);
    }
}

void Simulator::onOpened(const std::string& clientName, std::uint32_t version) {
    report("opened \"" + clientName + "\" version " + std::to_string(version));
    if (std::exchange(wasOpened_, true) || personality_->script.empty()) return;
    std::vector<TimedAction> script;
    std::string error;
    const bool isGood = parseScript(personality_->script, script, error);
    assert(isGood);
    if (isGood) play(std::move(script), nowMs_);
    playTimelines();  // what is due at once, before the client can ask
}

void Simulator::onKeyEvent(const KeyEvent& event, std::uint32_t data) {
    report("event " + std::string(event.name) + ' ' + std::to_string(data));
    if (personality_->onWrite != OnWrite::kApplies) {
        isLeaving_ = true;
        return;
    }
    pending_.push_back({&event, data, nowMs_ + writeDelayMs_});
}

void Simulator::applyWrites() {
    if (isFrozen()) return;
    const auto isDue = [&](const PendingWrite& write) { return write.dueMs <= nowMs_; };
    for (const auto& write : pending_) {
        if (isDue(write)) press(*write.event, write.data);
    }
    std::erase_if(pending_, isDue);
}

// Every listener hears of it, whether the radio obeyed or not.
void Simulator::press(const KeyEvent& event, std::uint32_t data) {
    if (isFlightRunning_) event.apply(aircraft_, personality_->habits, event.radio, data);
    for (auto& [number, client] : clients_) client.session->hear(event, data);
}

// Connected clients are told (Quit), cut off in the middle of a packet (Crash) or just cut off (Drop).
void Simulator::leave(ActionKind how, std::uint64_t awayMs) {
    for (auto& [number, client] : clients_) {
        if (how == ActionKind::kQuit) client.session->quit();
        std::string bytes;
        for (const auto& packet : client.session->takePackets()) bytes += packet;
        if (how == ActionKind::kCrash)
            bytes += dataAnswer(personality_->edition->protocol, {}, "cut off").substr(0, 30);
        output_.push_back({number, std::move(bytes), true});
    }
    clients_.clear();
    pending_.clear();
    reachableMs_ = nowMs_ + awayMs;
    if (awayMs > 0) remark("away for " + std::to_string(awayMs) + " ms");
}

void Simulator::flush(bool isFrameEnd) {
    for (auto entry = clients_.begin(); entry != clients_.end();) {
        auto& [number, client] = *entry;
        for (auto& chunk : chunksOf(client, isFrameEnd)) output_.push_back({number, std::move(chunk), false});
        const bool isBroken = client.session->isBroken();
        if (isBroken) output_.push_back({number, "", true});
        entry = isBroken ? clients_.erase(entry) : std::next(entry);
    }
}

std::vector<std::string> Simulator::chunksOf(Client& client, bool isFrameEnd) {
    // On a rough line answers wait for the end of the frame, so that there is something to join.
    if (personality_->isRough && !isFrameEnd) return {};
    auto packets = client.session->takePackets();
    if (personality_->isSilent) return {};
    if (personality_->talksGarbage && client.session->isOpen()) return {noise(noiseState_, kNoiseBytes)};
    if (personality_->isRough) return client.line.cut(packets, personality_->edition->protocol);
    return packets;
}

std::vector<Output> Simulator::takeOutput() {
    return std::exchange(output_, {});
}

std::vector<Report> Simulator::takeReports() {
    return std::exchange(reports_, {});
}

// What the present client did.
void Simulator::report(const std::string& text) {
    remark("client " + std::to_string(speaking_) + ' ' + text);
}

void Simulator::remark(const std::string& text) {
    reports_.push_back({nowMs_, text});
}

}  // namespace standin
