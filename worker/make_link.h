// make_link.h - the one place that decides what the worker talks to.
#pragma once
#include <memory>
#include "base/data_files.h"
#include "worker/sim_link.h"
#include "worker/worker_folder.h"
#include "worker/worker_log.h"
#include "worker/worker_options.h"

// Never null: without a usable script the built-in aircraft stands still, without a simulator the link waits.
// nowMs: when the script's time begins.
std::unique_ptr<SimLink> makeLink(const WorkerOptions& options, DataFiles& files, WorkerFolder& folder, WorkerLog& log,
                                  std::uint64_t nowMs);
