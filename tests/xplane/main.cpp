// main.cpp - stand_in_xplane: plays X-Plane for whoever asks, and prints what its clients do, one line each:
// milliseconds since the start, then the report. Reads actions from standard input, one per line; "play FILE" flies a
// script from then on. Ends with the action "exit", or with the end of standard input.
//   stand_in_xplane [--personality NAME] [--listen HOST:PORT] [--beacon HOST:PORT | --no-beacon] [--computer NAME]
//                   [--script FILE] [--stay]
// It listens on 127.0.0.1:49000 and announces itself to the group 239.255.1.1:49707 on this computer only; addresses
// are IPv4 numbers, of this computer. Port 0 takes a free one. --stay goes on after the end of standard input.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include "tests/xplane/server.h"

namespace {

struct Options {
    std::string personality = "stock_12";
    std::string script;
    xstandin::Server::Places places{{xstandin::kLoopback, xstandin::kUsualPort}, xstandin::kBeaconGroup};
    bool stays = false;
};

bool parseOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; i++) {
        const std::string option = argv[i];
        if (option == "--stay") {
            options.stays = true;
            continue;
        }
        if (option == "--no-beacon") {
            options.places.beacon = {};
            continue;
        }
        if (++i == argc) return false;
        if (option == "--personality")
            options.personality = argv[i];
        else if (option == "--script")
            options.script = argv[i];
        else if (option == "--computer")
            options.places.computer = argv[i];
        else if (option != "--listen" && option != "--beacon")
            return false;
        else if (!xstandin::parseEndpoint(argv[i], option == "--listen" ? options.places.own : options.places.beacon))
            return false;
    }
    return xstandin::findPersonality(options.personality) != nullptr;
}

int usage() {
    std::printf(
        "usage: stand_in_xplane [--personality NAME] [--listen HOST:PORT] [--beacon HOST:PORT | --no-beacon]\n"
        "                       [--computer NAME] [--script FILE] [--stay]\n");
    std::printf("personalities:\n");
    for (const auto* row = xstandin::personalitiesBegin(); row != xstandin::personalitiesEnd(); row++)
        std::printf("  %s\n", std::string(row->name).c_str());
    std::printf("actions:\n%s", xstandin::actionUsage().c_str());
    return 2;
}

void say(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

bool playFile(xstandin::Server& server, const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    std::vector<xstandin::TimedAction> script;
    std::string error = "cannot be read";
    const bool isGood = stream.good() && xstandin::parseScript(text.str(), script, error);
    if (isGood)
        server.play(std::move(script));
    else
        say("script " + file + ": " + error);
    return isGood;
}

void obey(xstandin::Server& server, std::string line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) return;
    std::string error;
    if (line.starts_with("play ")) {
        playFile(server, line.substr(5));
    } else if (!server.act(line, error)) {
        say("not understood: " + line + ": " + error);
    }
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parseOptions(argc, argv, options)) return usage();
    const auto startMs = xstandin::Server::nowMs();
    xstandin::Server server(*xstandin::findPersonality(options.personality), [&](const xstandin::Report& report) {
        say(std::to_string(report.atMs - std::min(report.atMs, startMs)) + ' ' + report.text);
    });
    const auto port = server.start(options.places);
    if (port == 0) {
        say(textOf(options.places.own) + " cannot be had: an X-Plane is running");
        return 1;
    }
    say("listening on port " + std::to_string(port));
    if (!options.script.empty() && !playFile(server, options.script)) return 1;
    for (std::string line; !server.isOver() && std::getline(std::cin, line);) obey(server, line);
    // A script may end the program after the end of its input.
    while (options.stays && !server.isOver()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return 0;
}
