// host_records.h - what the stand-in voice client keeps and hands out: channels, move rules, recorded calls, events.
// Values: copy them freely between threads.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

// Error codes the model answers with.
inline constexpr unsigned kHostErrorUndefined = 1;
inline constexpr unsigned kHostErrorInvalidClient = 512;
inline constexpr unsigned kHostErrorInvalidChannel = 768;
inline constexpr unsigned kHostErrorNotConnected = 1793;
inline constexpr unsigned kHostErrorNoPermission = 2568;

struct HostChannel {
    std::uint64_t id = 0;
    std::optional<std::string> name;  // any bytes; nullopt: the query succeeds with a null text
    std::uint64_t parent = 0;         // 0 = top level
};

enum class MoveAnswer { kConfirm, kRefuseAtOnce, kRefuseLater, kSilence };

// How a channel answers a requested move.
struct MoveRule {
    MoveAnswer answer = MoveAnswer::kConfirm;
    std::uint32_t delayMs = 30;               // from the request to the event; like a nearby server
    unsigned error = kHostErrorNoPermission;  // of a refusal
    bool reportsSuccess = true;  // a confirmed move with a return code also yields its server error event with error 0
};

// One call of a host function. Fields for arguments that it lacks keep their defaults.
struct HostCall {
    std::string function;        // "requestClientMove"; "position 17" for one that the plugin does not use
    std::uint64_t atMs = 0;      // the model's clock
    std::uint64_t threadId = 0;  // equal for calls of one thread
    std::uint64_t schid = 0;
    std::uint16_t clientId = 0;
    std::uint64_t channelId = 0;
    std::uint64_t number = 0;               // severity, variable flag or buffer size
    std::string text;                       // log text, sound path, plugin id
    std::string channelText;                // log channel, move password
    std::optional<std::string> returnCode;  // nullopt = null
};

enum class HostEventKind { kClientMove, kServerError, kTalkStatus };

// What the caller passes to the plugin's callback of the same name.
struct HostEvent {
    HostEventKind kind = HostEventKind::kClientMove;
    std::uint64_t dueMs = 0;
    std::uint64_t schid = 0;
    std::uint16_t clientId = 0;
    std::uint64_t oldChannelId = 0;         // client move
    std::uint64_t newChannelId = 0;         // client move; 0 = left the server
    unsigned error = 0;                     // server error
    std::optional<std::string> returnCode;  // server error
    int talkStatus = 0;                     // talk status: 1 = talking
};

// The arguments of a text message event, as an ordinary private message.
struct HostTextMessage {
    std::uint64_t schid = 1;
    std::uint16_t targetMode = 1;  // 1 private, 2 channel, 3 server
    std::uint16_t toClientId = 0;
    std::uint16_t fromClientId = 2;
    std::string fromName = "Tower";
    std::string fromUniqueId = "dG93ZXI=";
    std::string message;
    int ignored = 0;
};
