// diagnosis_win.h - hopline_worker.exe --diagnose: looks around, prints the report and saves it.
#pragma once
#include <string>
#include "worker/make_link.h"
#include "worker/worker_options.h"

// The data folder is the one of the options, otherwise the plugin's own. The report is saved there as
// corvalis-diagnose.txt, or in the folder for temporary files if that fails; true if either was done. Takes
// kLinkTrialMs and a little more at most. commandLineProblem: what was not understood, empty if all was.
bool diagnose(WorkerOptions options, const std::string& commandLineProblem, const MakeTransport& makeTransport);
