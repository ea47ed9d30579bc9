// diagnosis.h - the report of hopline_worker.exe --diagnose: one text for support, from what was found on the machine.
// Composes only; looking around and saving are in diagnosis_win.cpp.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>
#include "worker/link_trial.h"
#include "worker/readable_text.h"

inline constexpr const char* kDiagnosisFile = "corvalis-diagnose.txt";
inline constexpr std::size_t kMaxFoundBytes = 1'000'000;  // at most this much of a file is read
inline constexpr std::size_t kMaxFolderEntries = 100;     // listed at most
inline constexpr std::size_t kMaxShownLines = 200;        // of each file
inline constexpr std::size_t kMaxShownLineBytes = 2000;   // a longer line is cut
inline constexpr std::size_t kMaxShownLinkLines = 10;     // "link up", "link down"

// A file as it was found, whatever is in it.
struct FoundFile {
    enum class State { kMissing, kUnreadable, kRead };

    State state = State::kMissing;
    std::string bytes;                // the first kMaxFoundBytes, of a log the last ones
    std::uint64_t size = 0;           // of the whole file
    double writtenUnixSeconds = 0.0;  // last written
};

struct FolderEntry {
    std::string name;
    bool isFolder = false;
    std::uint64_t size = 0;           // bytes
    double writtenUnixSeconds = 0.0;  // last written
};

// Texts are UTF-8 or in the system's code page and may hold user names; the report is UTF-8 and does not.
struct Diagnosis {
    double nowUnixSeconds = 0.0;
    std::string commandLineProblem;  // empty: none

    std::string workerVersion;
    std::string pluginVersion;  // of the DLL beside the worker; empty: no DLL or no version
    std::string windowsVersion;
    std::string programFolder;  // where the worker program is

    std::string dataFolder;
    std::string dataFolderOrigin;  // how it was chosen
    bool folderExists = false;
    bool folderWritable = false;
    std::vector<FolderEntry> entries;
    std::uint64_t moreEntries = 0;  // those not in entries

    FoundFile settings;
    bool settingsBesideDll = false;  // where the plugin looks if the data folder has none
    FoundFile workerIni;
    std::vector<std::string> iniRemarks;  // the worker's, on lines that it ignores
    FoundFile captureMode;
    FoundFile hostInterface;  // the user's word on the version of the plugin interface
    FoundFile hostAnswer;     // what the plugin answered last
    FoundFile linkState;      // what the plugin's panel last said of the link
    FoundFile telemetry;
    FoundFile command;
    FoundFile log;
    FoundFile oldLog;

    std::string linkKind;          // what the worker is told to talk to
    bool otherWorkerRuns = false;  // then there is no trial
    std::optional<LinkTrial> trial;

    std::vector<std::string> accountNames;  // UTF-8, to be masked wherever they are part of a path
};

// [any] The report: lines ended by CR LF, a few MB at the very most.
std::string composeDiagnosis(const Diagnosis& found, const NarrowDecoder& decodeNarrow);
