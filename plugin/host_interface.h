// host_interface.h - which version of the plugin interface we answer to the voice client that loads us. Clients
// from 3.6 on take only 26, older ones only 23 to 25; what we call is the same in all of them. [any]
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include "base/data_files.h"
#include "base/version_resource.h"
#include "exchange/support_files.h"

inline constexpr int kOldHostInterface = 23;                 // clients 3.3 to 3.5.6, and any program we do not know
inline constexpr int kNewHostInterface = 26;                 // clients 3.6 and later
inline constexpr std::size_t kMaxHostInterfaceBytes = 4096;  // of kHostInterfaceFile: only its first line counts

// The program that has loaded us.
struct HostProgram {
    std::string fileName;                   // "ts3client_win64.exe", UTF-8; empty if unknown
    std::optional<ProgramVersion> version;  // nothing: no resource, or an unreadable one
};

struct HostInterface {
    int version = kOldHostInterface;
    std::string why;  // for the log, UTF-8
};

// A first line of userText (kHostInterfaceFile; empty: there is none) that is a whole number 23..99 decides. Otherwise
// 26 for a program named ts3client* whose version says 3.6 or later, 23 for every other.
HostInterface chooseHostInterface(const HostProgram& program, std::string_view userText);
// The same with the beginning of the file in the data folder.
HostInterface findHostInterface(const HostProgram& program, DataFiles& files, const std::string& dataFolder);

// "answers interface version 26: ts3client_win64.exe 3.6.2".
std::string hostInterfaceLine(const HostInterface& answer);
