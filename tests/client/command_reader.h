// command_reader.h - the worker's side of "command.json": waits for the plugin's commands and answers them.
// [host] Used from the test's main thread.
#pragma once
#include <string>
#include "tests/client/client_session_win.h"

// The text of a string or number value in a one-line JSON object; empty if the key is not there.
std::string jsonValue(const std::string& json, const std::string& key);

class CommandReader {
  public:
    explicit CommandReader(ClientSession& session) : session_(session) {}

    // Waits for a command other than the last one seen; empty if none comes. Opens the file only when it is a new one,
    // as the worker does: a file that is open cannot be replaced, and the plugin does not try for long.
    std::string next(std::uint64_t deadlineMs = 5000);
    // Answers the last command seen.
    void acknowledge(bool ok);

  private:
    ClientSession& session_;
    std::string lastId_;
    std::uint64_t lastWritten_ = 0;  // the system's time of the file last read, 100 ns; 0 none
};
