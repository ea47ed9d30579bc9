// diagnosis_win.h - hopline_worker.exe --diagnose: looks around, prints the report and saves it.
#pragma once
#include <string>
#include "worker/make_link.h"
#include "worker/worker_options.h"

// Uses the options' data folder, otherwise the plugin's own. Saves the report there as corvalis-diagnose.txt or, if
// that fails, in the folder for temporary files; true if either worked. Takes at most a little more than kLinkTrialMs.
// commandLineProblem: what was not understood, empty if everything was.
bool diagnose(WorkerOptions options, const std::string& commandLineProblem, const LinkWays& ways);
