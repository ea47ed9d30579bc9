// new_client_win.h - the stand-in as a voice client of today. With CORVALIS_NEW_CLIENT in the environment,
// client_tests, circuit and restarts run once more under a name and a version of the 3.6 clients, take only a plugin
// that answers interface version 26, and hand over the longer table of functions. [host] Called on the main thread.
#pragma once
#include <optional>
#include <string>

// Whether this program runs under a voice client's name.
bool isNewClient();

// Whether a client like this takes a plugin that answers so.
bool takesInterface(int version);

// Another of those programs as it is to be started: under a client's name if this one is.
std::wstring programName(const std::wstring& name);

// When asked for by the environment and not done yet: runs this program, with its own arguments, under a client's name
// (the link beside it that runs_as_new_client makes), and returns its exit code.
std::optional<int> runAsNewClient();
