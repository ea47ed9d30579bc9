// worker_options.h - what the worker is told to do: by its command line first, by worker.ini where that leaves it open.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include "worker/host_port.h"
#include "worker/xplane/datagrams.h"

inline constexpr std::size_t kMaxIniBytes = 65'536;  // a larger worker.ini is ignored

enum class LinkKind { kAuto, kSimConnect, kXPlane, kSimulate };

struct WorkerOptions {
    std::string dataDir;              // --data-dir
    std::uint32_t watchPid = 0;       // --watch-pid; 0 = watch nobody
    std::optional<LinkKind> link;     // --link, --simulate or link=; none = auto
    std::string script;               // --simulate SCRIPT or script=; empty = no script
    std::optional<HostPort> address;  // --address or address=; none = the simulator on this computer
    bool diagnose = false;            // --diagnose: report what is found instead of serving
    // --beacon or beacon=: where to listen for X-Plane's beacon, an IPv4 group or one of this computer's addresses;
    // none = where X-Plane sends it.
    std::optional<xplane::Endpoint> beacon{};
};

// The arguments after the program's name: --data-dir DIR [--watch-pid PID] [--simulate [SCRIPT] | [--link KIND]
// [--address HOST:PORT] [--beacon IPV4:PORT]], or --diagnose with any of them, where the data folder is optional too.
// False with the reason in error; even then options holds what was understood, above all the data folder.
bool parseArguments(const std::vector<std::string>& arguments, WorkerOptions& options, std::string& error);

// Fills in from the text of worker.ini what the command line left open: link=auto|simconnect|xplane|simulate,
// address=HOST:PORT (where the port may be missing if the link is xplane), beacon=IPV4:PORT and script=PATH, where a
// relative path starts at the data folder. Returns a remark for each ignored line, at most 20. An address counts only
// if the link is not the built-in aircraft.
std::vector<std::string> applyIni(std::string_view text, WorkerOptions& options);

// "link auto, simulator at simpc:500": what the worker is told to talk to.
std::string describeLink(const WorkerOptions& options);

// True for C:\..., \\server\..., \... and /...
bool isAbsolutePath(std::string_view path);
