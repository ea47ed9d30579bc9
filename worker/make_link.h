// make_link.h - the one place that decides what the worker talks to.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include "base/data_files.h"
#include "worker/sim_link.h"
#include "worker/simconnect/transport.h"
#include "worker/worker_folder.h"
#include "worker/worker_log.h"
#include "worker/worker_options.h"
#include "worker/xplane/datagrams.h"

// The way to the simulator at that address; without one, to the simulator on this computer.
using MakeTransport = std::function<std::unique_ptr<simconnect::Transport>(const std::optional<HostPort>& address)>;

// The ways out of this computer that a link may need.
struct LinkWays {
    MakeTransport makeTransport;
    xplane::MakeDatagrams makeDatagrams;
};

// Never null: without a usable script the built-in aircraft stands still, without a simulator the link waits.
// nowMs: when the script's time begins.
std::unique_ptr<SimLink> makeLink(const WorkerOptions& options, DataFiles& files, WorkerFolder& folder, WorkerLog& log,
                                  const LinkWays& ways, std::uint64_t nowMs);
