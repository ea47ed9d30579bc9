// voice_client_win.h - a voice client as a process of its own that others can kill: the host model on the circuit's
// server with the real plugin in it.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

// [host] Runs until standard input ends: "unload" and "load" take the plugin out and in, "swap" presses COM1's swap key
// on the panel. Prints "loaded", "unloaded", and "in N" for each channel the pilot is moved into. 0 if all is well.
int runVoiceClient();

// The channel of the last "in N"; 0 before.
std::uint64_t channelIn(const std::vector<std::string>& lines);
