// host_model.h - the stand-in voice client: servers, channels and clients behind the function table given to the
// plugin, whose calls are all recorded. Portable: core tests resolve the same table without the DLL. One model at a
// time per process, because the table's C functions carry no context. [any] Every member locks the model's own mutex;
// none calls out while holding it.
#pragma once
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>
#include "base/clock.h"
#include "base/mutex.h"
#include "plugin/host_table.h"
#include "tests/client/host_records.h"

// As clients from 3.6 on hand it over: the 210 entries that we know, then others.
inline constexpr int kNewHostFunctionCount = 230;
struct NewHostFunctionTable {
    void (*entries[kNewHostFunctionCount])() = {};
};

class HostModel {
  public:
    // The clock stamps the calls and starts the delays; it must outlive the model.
    explicit HostModel(const Clock& clock);
    ~HostModel();  // frees what the plugin still holds; check leaks() first
    HostModel(const HostModel&) = delete;
    HostModel& operator=(const HostModel&) = delete;

    // The table given to the plugin: all 210 entries set except the removed ones.
    HostFunctionTable table() const;
    NewHostFunctionTable newTable() const;                     // the same; a call of the further entries is a problem
    void removeFunction(HostPosition position);                // null in tables made from now on
    void failFunction(HostPosition position, unsigned error);  // answers error from now on; 0 = works again

    // --- what the servers hold; ids are the test's choice, 0 is none ---
    void addServer(std::uint64_t schid, std::uint16_t ownClientId, std::uint64_t ownChannel);
    void removeServer(std::uint64_t schid);
    void setCurrentServer(std::uint64_t schid);                        // the tab in front; no event
    void addChannel(std::uint64_t schid, const HostChannel& channel);  // at the end of the list
    void removeChannel(std::uint64_t schid, std::uint64_t channelId);
    void addClient(std::uint64_t schid, std::uint16_t clientId, std::uint64_t channelId);
    std::uint64_t channelOf(std::uint64_t schid, std::uint16_t clientId) const;  // 0 = nowhere
    std::uint64_t ownChannel(std::uint64_t schid) const;
    void setMoveRule(const MoveRule& rule);                           // for channels without a rule of their own
    void setMoveRule(std::uint64_t channelId, const MoveRule& rule);  // for this one
    void setReturnCodeText(const std::string& text);                  // in place of "rc-<pluginID>-<n>"; cut to fit
    void setNullChannelList(bool isNull);                             // success, but no list

    // --- what people do; each queues its event, due at once ---
    void moveByHand(std::uint64_t schid, std::uint16_t clientId, std::uint64_t channelId);  // channel 0 = leaves
    void setTalking(std::uint64_t schid, std::uint16_t clientId, bool talking);
    // Only the flag that getClientSelfVariableAsInt reports, no event.
    void setOwnTalkingFlag(std::uint64_t schid, bool talking);

    // Carries out what is due by nowMs (the clock's ticks) and yields its events, earliest first; the caller delivers.
    std::vector<HostEvent> advance(std::uint64_t nowMs);

    // --- what the plugin did ---
    std::vector<HostCall> calls() const;
    std::vector<HostCall> callsOf(std::string_view function) const;
    std::vector<std::string> logLines() const;      // texts of logMessage
    std::vector<std::string> playedSounds() const;  // paths of playWaveFile
    void forgetCalls();
    // For runs of hours: from now on no call is recorded, and a block given back is freed. Set before the plugin
    // starts.
    void keepNothing();
    // Broken rules so far, in words: unexpected positions, bad frees, null results, calls with a null path ...
    std::vector<std::string> problems() const;
    // One line per block handed out and not given back.
    std::vector<std::string> leaks() const;
    // Runs on the calling thread before each call is answered, outside the lock. Set it before the plugin starts.
    void setBeforeCall(std::function<void(const HostCall&)> hook);

    // --- the host functions themselves, as the table reaches them ---
    unsigned freeMemory(void* memory);
    unsigned logMessage(const char* text, int severity, const char* channel, std::uint64_t logId);
    unsigned playWaveFile(std::uint64_t schid, const char* path);
    unsigned requestClientMove(std::uint64_t schid, std::uint16_t clientId, std::uint64_t channelId,
                               const char* password, const char* returnCode);
    unsigned getClientID(std::uint64_t schid, std::uint16_t* clientId);
    unsigned getClientSelfVariableAsInt(std::uint64_t schid, std::size_t flag, int* value);
    unsigned getChannelOfClient(std::uint64_t schid, std::uint16_t clientId, std::uint64_t* channelId);
    unsigned getChannelVariableAsString(std::uint64_t schid, std::uint64_t channelId, std::size_t flag, char** text);
    unsigned getChannelList(std::uint64_t schid, std::uint64_t** channelIds);
    std::uint64_t getCurrentServerConnectionHandlerID();
    void createReturnCode(const char* pluginId, char* buffer, std::size_t maxLength);
    void unexpectedCall(int position);

  private:
    struct Client {
        std::uint64_t channelId = 0;
        bool talking = false;
    };
    struct Server {
        std::uint16_t ownClientId = 0;
        std::vector<HostChannel> channels;  // in the order of the host's list
        std::map<std::uint16_t, Client> clients;
    };
    struct Block {
        std::string what;
        std::size_t bytes = 0;
        bool isFree = false;  // kept and overwritten, so that a second free is recognised
    };

    HostCall newCall(const char* function) const;
    // Runs the hook, then records the call; returns the error set for the position, else 0.
    unsigned enter(HostPosition position, const HostCall& call);
    void* handOut(const void* bytes, std::size_t count, const std::string& what) REQUIRES(mutex_);
    Server* findServer(std::uint64_t schid) REQUIRES(mutex_);
    const HostChannel* findChannel(const Server& server, std::uint64_t channelId) const REQUIRES(mutex_);
    const MoveRule& ruleOf(std::uint64_t channelId) const REQUIRES(mutex_);
    void queueMove(const HostCall& request, const MoveRule& rule) REQUIRES(mutex_);
    bool apply(HostEvent& event) REQUIRES(mutex_);
    unsigned report(const std::string& problem, unsigned error) REQUIRES(mutex_);

    const Clock& clock_;
    std::function<void(const HostCall&)> beforeCall_;  // set before the plugin starts, then only called
    mutable Mutex mutex_;                              // all below; [any], for one call's bookkeeping
    bool removed_[kHostFunctionCount] GUARDED_BY(mutex_) = {};
    std::map<int, unsigned> failures_ GUARDED_BY(mutex_);
    std::map<std::uint64_t, Server> servers_ GUARDED_BY(mutex_);
    std::uint64_t currentServer_ GUARDED_BY(mutex_) = 0;
    MoveRule moveRule_ GUARDED_BY(mutex_);
    std::map<std::uint64_t, MoveRule> channelRules_ GUARDED_BY(mutex_);
    std::string returnCodeText_ GUARDED_BY(mutex_);
    bool nullChannelList_ GUARDED_BY(mutex_) = false;
    int returnCodes_ GUARDED_BY(mutex_) = 0;
    std::vector<HostEvent> events_ GUARDED_BY(mutex_);  // queued, in order of arrival
    std::vector<HostCall> calls_ GUARDED_BY(mutex_);
    bool keepsNothing_ GUARDED_BY(mutex_) = false;
    std::vector<std::string> problems_ GUARDED_BY(mutex_);
    std::map<void*, Block> blocks_ GUARDED_BY(mutex_);
};
