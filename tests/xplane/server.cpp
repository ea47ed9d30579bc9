#include "tests/xplane/server.h"
#include <algorithm>
#include <chrono>
#include <utility>

namespace xstandin {

Server::Server(const Personality& personality, Listener listener)
    : sockets_(makeSockets()), personality_(personality), listener_(std::move(listener)) {}

Server::~Server() {
    stop();
}

std::uint16_t Server::start(const Places& places) {
    const auto port = sockets_->open(places.own);
    if (port == 0) return 0;
    sockets_->announceTo(places.beacon);
    {
        MutexLock lock(mutex_);
        simulator_ = std::make_unique<Simulator>(personality_, port, places.computer, nowMs());
    }
    thread_ = std::thread([this] { run(); });
    return port;
}

void Server::stop() {
    stops_ = true;
    sockets_->wake();
    if (thread_.joinable()) thread_.join();
    sockets_->setReachable(false);
}

bool Server::act(std::string_view line, std::string& error) {
    Action action;
    if (!parseAction(line, action, error)) return false;
    bool isDone = false;
    {
        MutexLock lock(mutex_);
        isDone = simulator_ && simulator_->act(action, nowMs(), error);
    }
    sockets_->wake();
    return isDone;
}

void Server::play(std::vector<TimedAction> script) {
    MutexLock lock(mutex_);
    if (simulator_) simulator_->play(std::move(script), nowMs());
}

std::vector<std::string> Server::reports() const {
    MutexLock lock(mutex_);
    return reports_;
}

std::uint64_t Server::nowMs() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

void Server::run() {
    std::uint64_t timeoutMs = 0;
    while (!stops_) {
        const auto arrived = sockets_->wait(timeoutMs);
        std::vector<Datagram> sent;
        std::vector<Report> reports;
        bool isReachable = true;
        {
            MutexLock lock(mutex_);
            for (const auto& datagram : arrived) simulator_->receive(datagram.peer, datagram.bytes, nowMs());
            simulator_->advance(nowMs());
            sent = simulator_->takeOutput();
            reports = simulator_->takeReports();
            for (const auto& report : reports) reports_.push_back(report.text);
            isReachable = simulator_->isReachable() && !simulator_->isOver();
            isOver_ = simulator_->isOver();
            timeoutMs = simulator_->nextFrameMs() - std::min(nowMs(), simulator_->nextFrameMs());
        }
        for (const auto& datagram : sent) sockets_->send(datagram);
        sockets_->setReachable(isReachable);
        if (listener_) {
            for (const auto& report : reports) listener_(report);
        }
    }
}

}  // namespace xstandin
