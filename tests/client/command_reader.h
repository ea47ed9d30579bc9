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

    // Waits for a command other than the last one seen; empty if none comes.
    std::string next(std::uint64_t deadlineMs = 5000);
    // Answers the last command seen.
    void acknowledge(bool ok);

  private:
    ClientSession& session_;
    std::string lastId_;
};
