// stand_in_program.h - what the programs around the stand-ins share: a line for each report, and actions from standard
// input. Server is the stand-in's own, with act, play and isOver; parseScript and actionUsage are those beside it.
#pragma once
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace standin {

inline void say(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

// A listener for Server that prints milliseconds since startMs, then the report.
inline auto reportsSince(std::uint64_t startMs) {
    return [startMs](const auto& report) {
        say(std::to_string(report.atMs - std::min(report.atMs, startMs)) + ' ' + report.text);
    };
}

// The exit code of a program that was not understood.
template <class Personality>
int explain(const char* options, const Personality* begin, const Personality* end, const std::string& actions) {
    std::printf("usage: %s\npersonalities:\n", options);
    for (const auto* row = begin; row != end; row++) std::printf("  %s\n", std::string(row->name).c_str());
    std::printf("actions:\n%s", actions.c_str());
    return 2;
}

// Flies the script in that file from now on. False, and a line, if it cannot be read.
template <class TimedAction, class Server>
bool playFile(Server& server, const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    std::vector<TimedAction> script;
    std::string error = "cannot be read";
    const bool isGood = stream.good() && parseScript(text.str(), script, error);
    if (isGood)
        server.play(std::move(script));
    else
        say("script " + file + ": " + error);
    return isGood;
}

template <class TimedAction, class Server>
void obey(Server& server, std::string line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) return;
    std::string error;
    if (line.starts_with("play ")) {
        playFile<TimedAction>(server, line.substr(5));
    } else if (!server.act(line, error)) {
        say("not understood: " + line + ": " + error);
    }
}

// Does what standard input says until its end or the action "exit"; with stays until the action in any case.
template <class TimedAction, class Server>
void obeyInput(Server& server, bool stays) {
    for (std::string line; !server.isOver() && std::getline(std::cin, line);) obey<TimedAction>(server, line);
    // A script may end the program after the end of its input.
    while (stays && !server.isOver()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

}  // namespace standin
