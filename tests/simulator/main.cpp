// main.cpp - stand_in_simulator: plays the simulator for whoever connects, and prints what its clients do, one line
// each: milliseconds since the start, then the report. Reads actions from standard input, one per line; "play FILE"
// flies a script from then on. Ends with the action "exit", or with the end of standard input.
//   stand_in_simulator [--personality NAME] [--tcp PORT] [--pipe] [--script FILE] [--stay]
// --tcp 0 takes a free port and prints it. Without --tcp and --pipe: the pipe on Windows, a free port elsewhere.
// --stay goes on after the end of standard input.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include "base/number_text.h"
#include "tests/simulator/server.h"

namespace {

struct Options {
    std::string personality = "stock";
    std::string script;
    int tcpPort = -1;
    bool hasPipe = false;
    bool stays = false;
};

bool parseOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; i++) {
        const std::string option = argv[i];
        if (option == "--pipe" || option == "--stay") {
            (option == "--pipe" ? options.hasPipe : options.stays) = true;
            continue;
        }
        if (++i == argc) return false;
        if (option == "--personality")
            options.personality = argv[i];
        else if (option == "--script")
            options.script = argv[i];
        else if (option == "--tcp")
            options.tcpPort = leadingInt(argv[i]);
        else
            return false;
    }
#ifdef _WIN32
    if (options.tcpPort < 0) options.hasPipe = true;
#else
    if (options.tcpPort < 0) options.tcpPort = 0;
#endif
    return options.tcpPort <= 65'535 && standin::findPersonality(options.personality) != nullptr;
}

int usage() {
    std::printf("usage: stand_in_simulator [--personality NAME] [--tcp PORT] [--pipe] [--script FILE] [--stay]\n");
    std::printf("personalities:\n");
    for (const auto* row = standin::personalitiesBegin(); row != standin::personalitiesEnd(); row++)
        std::printf("  %s\n", std::string(row->name).c_str());
    std::printf("actions:\n%s", standin::actionUsage().c_str());
    return 2;
}

void say(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

bool playFile(standin::Server& server, const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    std::vector<standin::TimedAction> script;
    std::string error = "cannot be read";
    const bool isGood = stream.good() && standin::parseScript(text.str(), script, error);
    if (isGood)
        server.play(std::move(script));
    else
        say("script " + file + ": " + error);
    return isGood;
}

void obey(standin::Server& server, std::string line) {
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
    const auto startMs = standin::Server::nowMs();
    standin::Server server(*standin::findPersonality(options.personality), [&](const standin::Report& report) {
        say(std::to_string(report.atMs - std::min(report.atMs, startMs)) + ' ' + report.text);
    });
    if (options.hasPipe && !server.listenPipe(standin::kSimulatorPipe)) {
        say("the pipe cannot be had: a simulator is running");
        return 1;
    }
    const auto port = options.tcpPort >= 0 ? server.listenTcp(static_cast<std::uint16_t>(options.tcpPort)) : 0;
    if (options.tcpPort >= 0 && port == 0) {
        say("port " + std::to_string(options.tcpPort) + " cannot be had");
        return 1;
    }
    server.start();
    say(port ? "listening on port " + std::to_string(port) : "listening on the pipe");
    if (!options.script.empty() && !playFile(server, options.script)) return 1;
    for (std::string line; !server.isOver() && std::getline(std::cin, line);) obey(server, line);
    // A script may end the program after the end of its input.
    while (options.stays && !server.isOver()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return 0;
}
