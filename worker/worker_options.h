// worker_options.h - what the worker is told to do: by its command line first, by worker.ini where that leaves it open.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include "worker/host_port.h"

inline constexpr std::size_t kMaxIniBytes = 65'536;  // a larger worker.ini is ignored

enum class LinkKind { kAuto, kSimulate };

struct WorkerOptions {
    std::string dataDir;              // --data-dir
    std::uint32_t watchPid = 0;       // --watch-pid; 0 = watch nobody
    std::optional<LinkKind> link;     // --simulate or link=; none = auto
    std::string script;               // --simulate SCRIPT or script=; empty = no script
    std::optional<HostPort> address;  // --address or address=; none = the simulator on this computer
    bool diagnose = false;            // --diagnose: report what is found instead of serving
};

// The arguments after the program's name: --data-dir DIR [--watch-pid PID] [--simulate [SCRIPT] | --address HOST:PORT],
// or --diagnose with any of them, where the data folder is optional too. False with the reason in error; even then
// options holds what was understood, above all the data folder.
bool parseArguments(const std::vector<std::string>& arguments, WorkerOptions& options, std::string& error);

// Fills in from the text of worker.ini what the command line left open: link=auto|simulate, address=HOST:PORT and
// script=PATH, where a relative path starts at the data folder. Returns a remark for each ignored line, at most 20. An
// address counts only if the link is not the built-in aircraft.
std::vector<std::string> applyIni(std::string_view text, WorkerOptions& options);

// "link auto, simulator at simpc:500": what the worker is told to talk to.
std::string describeLink(const WorkerOptions& options);

// True for C:\..., \\server\..., \... and /...
bool isAbsolutePath(std::string_view path);
