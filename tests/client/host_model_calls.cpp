#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <thread>
#include <type_traits>
#include <utility>
#include "tests/client/host_model.h"

namespace {

std::atomic<HostModel*> gActive{nullptr};  // stored by constructor and destructor, loaded by every host function

// The table's entries: plain C functions that pass each call to the one active model. A call after the model is gone (a
// plugin thread that outlived its shutdown) is answered as if the host were gone.
template <auto Method>
struct Entry;

template <class Result, class... Arguments, Result (HostModel::*Method)(Arguments...)>
struct Entry<Method> {
    static Result call(Arguments... arguments) {
        HostModel* model = gActive.load();
        if constexpr (std::is_void_v<Result>) {
            if (model) (model->*Method)(arguments...);
        } else {
            return model ? (model->*Method)(arguments...) : Result{kHostErrorUndefined};
        }
    }
};

template <int Position>
void callOfOther() {
    if (HostModel* model = gActive.load()) model->unexpectedCall(Position);
}

using AnyFunction = void (*)();

template <class Table, int... Positions>
void fillWithOthers(Table& table, std::integer_sequence<int, Positions...>) {
    ((table.entries[Positions] = callOfOther<Positions>), ...);
}

template <auto Method>
void put(HostFunctionTable& table, HostPosition position) {
    table.entries[position] = reinterpret_cast<AnyFunction>(&Entry<Method>::call);
}

std::string orEmpty(const char* text) {
    return text ? text : "";
}

std::optional<std::string> orNone(const char* text) {
    return text ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace

HostModel::HostModel(const Clock& clock) : clock_(clock) {
    HostModel* none = nullptr;
    const bool isOnly = gActive.compare_exchange_strong(none, this);
    assert(isOnly && "one model at a time");
    static_cast<void>(isOnly);
}

HostModel::~HostModel() {
    gActive = nullptr;
    MutexLock lock(mutex_);
    for (const auto& [memory, block] : blocks_) std::free(memory);
}

HostFunctionTable HostModel::table() const {
    HostFunctionTable table;
    fillWithOthers(table, std::make_integer_sequence<int, kHostFunctionCount>());
    put<&HostModel::freeMemory>(table, kFreeMemoryPosition);
    put<&HostModel::logMessage>(table, kLogMessagePosition);
    put<&HostModel::playWaveFile>(table, kPlayWaveFilePosition);
    put<&HostModel::requestClientMove>(table, kRequestClientMovePosition);
    put<&HostModel::getClientID>(table, kGetClientIdPosition);
    put<&HostModel::getClientSelfVariableAsInt>(table, kGetClientSelfVariableAsIntPosition);
    put<&HostModel::getChannelOfClient>(table, kGetChannelOfClientPosition);
    put<&HostModel::getChannelVariableAsString>(table, kGetChannelVariableAsStringPosition);
    put<&HostModel::getChannelList>(table, kGetChannelListPosition);
    put<&HostModel::getCurrentServerConnectionHandlerID>(table, kGetCurrentServerConnectionHandlerIdPosition);
    put<&HostModel::createReturnCode>(table, kCreateReturnCodePosition);
    MutexLock lock(mutex_);
    for (int i = 0; i < kHostFunctionCount; i++) {
        if (removed_[i]) table.entries[i] = nullptr;
    }
    return table;
}

NewHostFunctionTable HostModel::newTable() const {
    NewHostFunctionTable longer;
    fillWithOthers(longer, std::make_integer_sequence<int, kNewHostFunctionCount>());
    const HostFunctionTable known = table();
    std::copy(std::begin(known.entries), std::end(known.entries), longer.entries);
    return longer;
}

HostCall HostModel::newCall(const char* function) const {
    HostCall call;
    call.function = function;
    call.atMs = clock_.tickMs();
    call.threadId = std::hash<std::thread::id>()(std::this_thread::get_id());
    return call;
}

unsigned HostModel::enter(HostPosition position, const HostCall& call) {
    if (beforeCall_) beforeCall_(call);
    MutexLock lock(mutex_);
    if (!keepsNothing_) calls_.push_back(call);
    const auto failure = failures_.find(position);
    return failure == failures_.end() ? 0 : failure->second;
}

void* HostModel::handOut(const void* bytes, std::size_t count, const std::string& what) {
    void* memory = std::malloc(count);
    std::memcpy(memory, bytes, count);
    blocks_[memory] = {what, count, false};
    return memory;
}

void HostModel::queueMove(const HostCall& request, const MoveRule& rule) {
    HostEvent event;
    event.dueMs = request.atMs + rule.delayMs;
    event.schid = request.schid;
    event.clientId = request.clientId;
    event.newChannelId = request.channelId;
    event.returnCode = request.returnCode;
    if (rule.answer == MoveAnswer::kConfirm) events_.push_back(event);
    const bool succeeds = rule.answer == MoveAnswer::kConfirm && rule.reportsSuccess && request.returnCode.has_value();
    if (!succeeds && rule.answer != MoveAnswer::kRefuseLater) return;
    event.kind = HostEventKind::kServerError;
    event.error = succeeds ? 0 : rule.error;
    events_.push_back(event);
}

unsigned HostModel::report(const std::string& problem, unsigned error) {
    problems_.push_back(problem);
    return error;
}

// --- the host functions ---

unsigned HostModel::freeMemory(void* memory) {
    const unsigned failure = enter(kFreeMemoryPosition, newCall("freeMemory"));
    MutexLock lock(mutex_);
    const auto block = blocks_.find(memory);
    if (block == blocks_.end()) return report("freeMemory of what the host never handed out", kHostErrorUndefined);
    if (block->second.isFree) return report("freeMemory twice: " + block->second.what, kHostErrorUndefined);
    block->second.isFree = true;
    std::memset(memory, 0xDD, block->second.bytes);  // whoever still reads it sees nonsense
    if (keepsNothing_) {
        std::free(memory);
        blocks_.erase(block);
    }
    return failure;
}

unsigned HostModel::logMessage(const char* text, int severity, const char* channel, std::uint64_t logId) {
    HostCall call = newCall("logMessage");
    call.text = orEmpty(text);
    call.channelText = orEmpty(channel);
    call.number = static_cast<std::uint64_t>(severity);
    call.schid = logId;
    const unsigned failure = enter(kLogMessagePosition, call);
    MutexLock lock(mutex_);
    if (!text || !channel) return report("logMessage with a null text", kHostErrorUndefined);
    return failure;
}

unsigned HostModel::playWaveFile(std::uint64_t schid, const char* path) {
    HostCall call = newCall("playWaveFile");
    call.schid = schid;
    call.text = orEmpty(path);
    const unsigned failure = enter(kPlayWaveFilePosition, call);
    MutexLock lock(mutex_);
    if (!path || !*path) return report("playWaveFile without a path", kHostErrorUndefined);
    if (!findServer(schid)) return kHostErrorNotConnected;
    return failure;
}

unsigned HostModel::requestClientMove(std::uint64_t schid, std::uint16_t clientId, std::uint64_t channelId,
                                      const char* password, const char* returnCode) {
    HostCall call = newCall("requestClientMove");
    call.schid = schid;
    call.clientId = clientId;
    call.channelId = channelId;
    call.channelText = orEmpty(password);
    call.returnCode = orNone(returnCode);
    const unsigned failure = enter(kRequestClientMovePosition, call);
    MutexLock lock(mutex_);
    if (!password) return report("requestClientMove with a null password", kHostErrorUndefined);
    if (failure != 0) return failure;
    Server* server = findServer(schid);
    if (!server) return kHostErrorNotConnected;
    if (!server->clients.count(clientId)) return kHostErrorInvalidClient;
    if (!findChannel(*server, channelId)) return kHostErrorInvalidChannel;
    const MoveRule& rule = ruleOf(channelId);
    if (rule.answer == MoveAnswer::kRefuseAtOnce) return rule.error;
    queueMove(call, rule);
    return 0;
}

unsigned HostModel::getClientID(std::uint64_t schid, std::uint16_t* clientId) {
    HostCall call = newCall("getClientID");
    call.schid = schid;
    const unsigned failure = enter(kGetClientIdPosition, call);
    MutexLock lock(mutex_);
    if (!clientId) return report("getClientID without a place for the result", kHostErrorUndefined);
    if (failure != 0) return failure;
    const Server* server = findServer(schid);
    if (!server) return kHostErrorNotConnected;
    *clientId = server->ownClientId;
    return 0;
}

unsigned HostModel::getClientSelfVariableAsInt(std::uint64_t schid, std::size_t flag, int* value) {
    HostCall call = newCall("getClientSelfVariableAsInt");
    call.schid = schid;
    call.number = flag;
    const unsigned failure = enter(kGetClientSelfVariableAsIntPosition, call);
    MutexLock lock(mutex_);
    if (!value) return report("getClientSelfVariableAsInt without a place for the result", kHostErrorUndefined);
    if (flag != kClientFlagTalking) return report("getClientSelfVariableAsInt of another flag", kHostErrorUndefined);
    if (failure != 0) return failure;
    Server* server = findServer(schid);
    if (!server) return kHostErrorNotConnected;
    *value = server->clients[server->ownClientId].talking ? 1 : 0;
    return 0;
}

unsigned HostModel::getChannelOfClient(std::uint64_t schid, std::uint16_t clientId, std::uint64_t* channelId) {
    HostCall call = newCall("getChannelOfClient");
    call.schid = schid;
    call.clientId = clientId;
    const unsigned failure = enter(kGetChannelOfClientPosition, call);
    MutexLock lock(mutex_);
    if (!channelId) return report("getChannelOfClient without a place for the result", kHostErrorUndefined);
    if (failure != 0) return failure;
    Server* server = findServer(schid);
    if (!server) return kHostErrorNotConnected;
    const auto client = server->clients.find(clientId);
    if (client == server->clients.end()) return kHostErrorInvalidClient;
    *channelId = client->second.channelId;
    return 0;
}

unsigned HostModel::getChannelVariableAsString(std::uint64_t schid, std::uint64_t channelId, std::size_t flag,
                                               char** text) {
    HostCall call = newCall("getChannelVariableAsString");
    call.schid = schid;
    call.channelId = channelId;
    call.number = flag;
    const unsigned failure = enter(kGetChannelVariableAsStringPosition, call);
    MutexLock lock(mutex_);
    if (!text) return report("getChannelVariableAsString without a place for the result", kHostErrorUndefined);
    if (flag != kChannelName) return report("getChannelVariableAsString of another variable", kHostErrorUndefined);
    if (failure != 0) return failure;
    Server* server = findServer(schid);
    if (!server) return kHostErrorNotConnected;
    const HostChannel* channel = findChannel(*server, channelId);
    if (!channel) return kHostErrorInvalidChannel;
    *text = nullptr;
    if (!channel->name) return 0;
    *text = static_cast<char*>(handOut(channel->name->c_str(), channel->name->size() + 1, "name " + *channel->name));
    return 0;
}

unsigned HostModel::getChannelList(std::uint64_t schid, std::uint64_t** channelIds) {
    HostCall call = newCall("getChannelList");
    call.schid = schid;
    const unsigned failure = enter(kGetChannelListPosition, call);
    MutexLock lock(mutex_);
    if (!channelIds) return report("getChannelList without a place for the result", kHostErrorUndefined);
    if (failure != 0) return failure;
    Server* server = findServer(schid);
    if (!server) return kHostErrorNotConnected;
    *channelIds = nullptr;
    if (nullChannelList_) return 0;
    std::vector<std::uint64_t> ids;
    for (const HostChannel& channel : server->channels) ids.push_back(channel.id);
    ids.push_back(0);
    *channelIds = static_cast<std::uint64_t*>(handOut(ids.data(), ids.size() * sizeof ids[0], "channel list"));
    return 0;
}

std::uint64_t HostModel::getCurrentServerConnectionHandlerID() {
    const unsigned failure =
        enter(kGetCurrentServerConnectionHandlerIdPosition, newCall("getCurrentServerConnectionHandlerID"));
    MutexLock lock(mutex_);
    return failure != 0 ? 0 : currentServer_;
}

void HostModel::createReturnCode(const char* pluginId, char* buffer, std::size_t maxLength) {
    HostCall call = newCall("createReturnCode");
    call.text = orEmpty(pluginId);
    call.number = maxLength;
    const unsigned failure = enter(kCreateReturnCodePosition, call);
    MutexLock lock(mutex_);
    if (!pluginId || !buffer || maxLength == 0) {
        report("createReturnCode with a null argument", kHostErrorUndefined);
        return;
    }
    if (failure != 0) return;
    const std::string code = returnCodeText_.empty()
                                 ? "rc-" + std::string(pluginId) + "-" + std::to_string(++returnCodes_)
                                 : returnCodeText_;
    const std::size_t count = std::min(code.size() + 1, maxLength);  // one that is too long ends without a zero
    std::memcpy(buffer, code.c_str(), count);
}

void HostModel::unexpectedCall(int position) {
    HostCall call = newCall("");
    call.function = "position " + std::to_string(position);
    MutexLock lock(mutex_);
    calls_.push_back(call);
    report("unexpected call of position " + std::to_string(position), kHostErrorUndefined);
}
