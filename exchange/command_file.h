// command_file.h - "command.json": one write to the simulator at a time, for the worker to carry out.
#pragma once
#include <cstdint>
#include <string>

inline constexpr const char* kCommandFile = "command.json";

// One write that the panel asked for.
struct Command {
    std::int32_t com = 1;         // 1 COM1, 2 COM2
    std::int32_t slot = 0;        // RadioSlot
    double value = 0.0;           // kHz, or volume 0..1, or 0 for a swap
    float localVolume = -1.0f;    // volume commands: the panel's volume in percent, 80 is unity; -1 otherwise
    std::string id;               // given when written: "<host process id>-<tick ms>"
    std::uint64_t notBefore = 0;  // tick ms, earliest time to write it
    std::uint64_t writtenAt = 0;  // tick ms, 0 until written
};

// The file's one line; createdUnixSeconds is the wall clock of the writing.
std::string writeCommandText(const Command& command, double createdUnixSeconds);
