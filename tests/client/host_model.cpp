#include "tests/client/host_model.h"
#include <algorithm>
#include <utility>

void HostModel::removeFunction(HostPosition position) {
    MutexLock lock(mutex_);
    removed_[position] = true;
}

void HostModel::failFunction(HostPosition position, unsigned error) {
    MutexLock lock(mutex_);
    failures_[position] = error;
}

// --- the servers ---

void HostModel::addServer(std::uint64_t schid, std::uint16_t ownClientId, std::uint64_t ownChannel) {
    MutexLock lock(mutex_);
    Server& server = servers_[schid];
    server.ownClientId = ownClientId;
    server.clients[ownClientId].channelId = ownChannel;
    if (currentServer_ == 0) currentServer_ = schid;
}

void HostModel::removeServer(std::uint64_t schid) {
    MutexLock lock(mutex_);
    servers_.erase(schid);
    if (currentServer_ == schid) currentServer_ = 0;
}

void HostModel::setCurrentServer(std::uint64_t schid) {
    MutexLock lock(mutex_);
    currentServer_ = schid;
}

void HostModel::addChannel(std::uint64_t schid, const HostChannel& channel) {
    MutexLock lock(mutex_);
    servers_[schid].channels.push_back(channel);
}

void HostModel::removeChannel(std::uint64_t schid, std::uint64_t channelId) {
    MutexLock lock(mutex_);
    std::erase_if(servers_[schid].channels, [&](const HostChannel& c) { return c.id == channelId; });
}

void HostModel::addClient(std::uint64_t schid, std::uint16_t clientId, std::uint64_t channelId) {
    MutexLock lock(mutex_);
    servers_[schid].clients[clientId].channelId = channelId;
}

std::uint64_t HostModel::channelOf(std::uint64_t schid, std::uint16_t clientId) const {
    MutexLock lock(mutex_);
    const auto server = servers_.find(schid);
    if (server == servers_.end()) return 0;
    const auto client = server->second.clients.find(clientId);
    return client == server->second.clients.end() ? 0 : client->second.channelId;
}

std::uint64_t HostModel::ownChannel(std::uint64_t schid) const {
    std::uint16_t own = 0;
    {
        MutexLock lock(mutex_);
        const auto server = servers_.find(schid);
        if (server != servers_.end()) own = server->second.ownClientId;
    }
    return channelOf(schid, own);
}

void HostModel::setMoveRule(const MoveRule& rule) {
    MutexLock lock(mutex_);
    moveRule_ = rule;
}

void HostModel::setMoveRule(std::uint64_t channelId, const MoveRule& rule) {
    MutexLock lock(mutex_);
    channelRules_[channelId] = rule;
}

void HostModel::setReturnCodeText(const std::string& text) {
    MutexLock lock(mutex_);
    returnCodeText_ = text;
}

void HostModel::setNullChannelList(bool isNull) {
    MutexLock lock(mutex_);
    nullChannelList_ = isNull;
}

// --- what people do ---

void HostModel::moveByHand(std::uint64_t schid, std::uint16_t clientId, std::uint64_t channelId) {
    MutexLock lock(mutex_);
    HostEvent event;
    event.dueMs = clock_.tickMs();
    event.schid = schid;
    event.clientId = clientId;
    event.newChannelId = channelId;
    events_.push_back(event);
}

void HostModel::setTalking(std::uint64_t schid, std::uint16_t clientId, bool talking) {
    MutexLock lock(mutex_);
    HostEvent event;
    event.kind = HostEventKind::kTalkStatus;
    event.dueMs = clock_.tickMs();
    event.schid = schid;
    event.clientId = clientId;
    event.talkStatus = talking ? 1 : 0;
    events_.push_back(event);
}

void HostModel::setOwnTalkingFlag(std::uint64_t schid, bool talking) {
    MutexLock lock(mutex_);
    Server& server = servers_[schid];
    server.clients[server.ownClientId].talking = talking;
}

std::vector<HostEvent> HostModel::advance(std::uint64_t nowMs) {
    MutexLock lock(mutex_);
    const auto later = std::stable_partition(events_.begin(), events_.end(),
                                             [&](const HostEvent& event) { return event.dueMs <= nowMs; });
    std::vector<HostEvent> due(events_.begin(), later);
    events_.erase(events_.begin(), later);
    std::stable_sort(due.begin(), due.end(), [](const HostEvent& a, const HostEvent& b) { return a.dueMs < b.dueMs; });
    std::vector<HostEvent> yielded;
    for (HostEvent& event : due) {
        if (apply(event)) yielded.push_back(event);
    }
    return yielded;
}

// Changes the servers as the event says. False if it no longer applies: the server, client or channel is gone.
bool HostModel::apply(HostEvent& event) {
    Server* server = findServer(event.schid);
    if (!server) return false;
    if (event.kind == HostEventKind::kServerError) return true;
    const auto client = server->clients.find(event.clientId);
    if (client == server->clients.end()) return false;
    if (event.kind == HostEventKind::kTalkStatus) {
        client->second.talking = event.talkStatus == 1;
        return true;
    }
    event.oldChannelId = client->second.channelId;
    if (event.newChannelId != 0 && !findChannel(*server, event.newChannelId)) return false;
    if (event.newChannelId == 0) {
        server->clients.erase(client);
    } else {
        client->second.channelId = event.newChannelId;
    }
    return true;
}

// --- what the plugin did ---

std::vector<HostCall> HostModel::calls() const {
    MutexLock lock(mutex_);
    return calls_;
}

std::vector<HostCall> HostModel::callsOf(std::string_view function) const {
    std::vector<HostCall> found = calls();
    std::erase_if(found, [&](const HostCall& call) { return call.function != function; });
    return found;
}

std::vector<std::string> HostModel::logLines() const {
    std::vector<std::string> lines;
    for (const HostCall& call : callsOf("logMessage")) lines.push_back(call.text);
    return lines;
}

std::vector<std::string> HostModel::playedSounds() const {
    std::vector<std::string> paths;
    for (const HostCall& call : callsOf("playWaveFile")) paths.push_back(call.text);
    return paths;
}

void HostModel::forgetCalls() {
    MutexLock lock(mutex_);
    calls_.clear();
}

void HostModel::keepNothing() {
    MutexLock lock(mutex_);
    keepsNothing_ = true;
}

std::vector<std::string> HostModel::problems() const {
    MutexLock lock(mutex_);
    return problems_;
}

std::vector<std::string> HostModel::leaks() const {
    MutexLock lock(mutex_);
    std::vector<std::string> lines;
    for (const auto& [memory, block] : blocks_) {
        if (!block.isFree) lines.push_back("not taken back: " + block.what);
    }
    return lines;
}

void HostModel::setBeforeCall(std::function<void(const HostCall&)> hook) {
    beforeCall_ = std::move(hook);
}

HostModel::Server* HostModel::findServer(std::uint64_t schid) {
    const auto server = servers_.find(schid);
    return server == servers_.end() ? nullptr : &server->second;
}

const HostChannel* HostModel::findChannel(const Server& server, std::uint64_t channelId) const {
    for (const HostChannel& channel : server.channels) {
        if (channel.id == channelId) return &channel;
    }
    return nullptr;
}

const MoveRule& HostModel::ruleOf(std::uint64_t channelId) const {
    const auto rule = channelRules_.find(channelId);
    return rule == channelRules_.end() ? moveRule_ : rule->second;
}
