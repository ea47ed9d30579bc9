#include "tests/simulator/server.h"
#include <algorithm>
#include <chrono>
#include <utility>

namespace standin {

Server::Server(const Personality& personality, Listener listener)
    : connections_(makeConnections()), listener_(std::move(listener)), simulator_(personality, nowMs()) {}

Server::~Server() {
    stop();
}

void Server::stop() {
    stops_ = true;
    connections_->wake();
    if (thread_.joinable()) thread_.join();
}

void Server::start() {
    thread_ = std::thread([this] { run(); });
}

bool Server::act(std::string_view line, std::string& error) {
    Action action;
    if (!parseAction(line, action, error)) return false;
    bool isDone = false;
    {
        MutexLock lock(mutex_);
        isDone = simulator_.act(action, nowMs(), error);
    }
    connections_->wake();
    return isDone;
}

void Server::play(std::vector<TimedAction> script) {
    MutexLock lock(mutex_);
    simulator_.play(std::move(script), nowMs());
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
        const auto events = connections_->wait(timeoutMs);
        std::vector<Output> outputs;
        std::vector<Report> reports;
        bool isReachable = true;
        {
            MutexLock lock(mutex_);
            takeIn(events);
            simulator_.advance(nowMs());
            outputs = simulator_.takeOutput();
            reports = simulator_.takeReports();
            for (const auto& report : reports) reports_.push_back(report.text);
            isReachable = simulator_.isReachable() && !simulator_.isOver();
            timeoutMs = simulator_.nextFrameMs() - std::min(nowMs(), simulator_.nextFrameMs());
        }
        connections_->setReachable(isReachable);
        for (const auto& output : outputs) {
            const auto connection = connectionOf_.find(output.client);
            if (connection == connectionOf_.end()) continue;
            connections_->send(connection->second, output.bytes);
            if (!output.isLast) continue;
            connections_->close(connection->second);
            clients_.erase(connection->second);
            connectionOf_.erase(connection);
        }
        if (listener_) {
            for (const auto& report : reports) listener_(report);
        }
        MutexLock lock(mutex_);
        isOver_ = simulator_.isOver();
    }
}

void Server::takeIn(const std::vector<ConnectionEvent>& events) {
    for (const auto& event : events) {
        if (event.kind == ConnectionEvent::Kind::kOpened) {
            const int client = simulator_.connect(nowMs());
            clients_[event.connection] = client;
            connectionOf_[client] = event.connection;
            continue;
        }
        const auto client = clients_.find(event.connection);
        if (client == clients_.end()) continue;
        if (event.kind == ConnectionEvent::Kind::kReceived) {
            simulator_.receive(client->second, event.bytes, nowMs());
            continue;
        }
        simulator_.disconnect(client->second, nowMs());
        connectionOf_.erase(client->second);
        clients_.erase(client);
    }
}

}  // namespace standin
