// disconnect_reason.h - why there is no simulator, as a value, and the one place that puts it into words: for the
// panel's left status line, the settings dialog and the report for support. English, like everything on the status
// lines. [any]
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include "bridge/telemetry_file.h"

// What has become of the worker that was started with the plugin.
struct WorkerLife {
    enum class State {
        kRunning,
        kNotStarted,  // the system refused
        kEnded,       // by itself, or killed by others
    };
    State state = State::kRunning;
    std::uint32_t code = 0;  // kNotStarted: the system's error; kEnded: the exit code
    bool isMissing = false;  // there was neither program nor script to start: what runs or ran is a bare interpreter

    bool operator==(const WorkerLife&) const = default;
};

enum class DisconnectCause {
    kNone,           // connected
    kWorkerMissing,  // this and the next two as in WorkerLife
    kWorkerNotStarted,
    kWorkerEnded,
    kWorkerSilent,   // it runs, but has written nothing just now
    kOtherProtocol,  // what it writes is meant for another version of the plugin
    kWorkerSays,     // it has its own words for what is wrong with the link
    kOutOfMemory,    // the plugin has no memory to look
};

struct DisconnectReason {
    DisconnectCause cause = DisconnectCause::kNone;
    std::uint32_t code = 0;    // kWorkerNotStarted, kWorkerEnded: as in WorkerLife
    std::string workerStatus;  // kWorkerSays: "status" of the telemetry

    bool operator==(const DisconnectReason&) const = default;
};

// A fresh reading has no reason. Otherwise a worker that is gone comes first: what it wrote looks timely for some
// seconds.
DisconnectReason reasonOf(const WorkerLife& worker, const std::optional<TelemetryReading>& reading);

// Longer reasons, another worker's, are cut for the eye: neither the panel's line nor the dialog's has room for more.
inline constexpr std::size_t kMaxReasonBytes = kMaxPilotBytes;

// "worker not running (code 3)"; at most kMaxReasonBytes of UTF-8 on one line, empty for kNone.
std::string reasonText(const DisconnectReason& reason);

// For the host's log: "SimConnect worker ended (exit code 3)".
std::string workerEndLine(std::uint32_t exitCode);

inline constexpr std::string_view kConnectedText = "CONNECTED";
inline constexpr std::string_view kDisconnectedText = "DISCONNECTED";

// For the panel: "DISCONNECTED: worker not running (code 3)", the reason as in reasonText; the bare word for kNone.
std::string disconnectedText(const DisconnectReason& reason);

// The same with the whole reason, kMaxTelemetryTextBytes at most, for the report for support: that masks the names of
// other computers, and half a name is hard to tell for one.
std::string wholeDisconnectedText(const DisconnectReason& reason);
