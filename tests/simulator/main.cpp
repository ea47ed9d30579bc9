// main.cpp - stand_in_simulator: plays the simulator for whoever connects, and prints what its clients do, one line
// each: milliseconds since the start, then the report. Reads actions from standard input, one per line; "play FILE"
// flies a script from then on. Ends with the action "exit", or with the end of standard input.
//   stand_in_simulator [--personality NAME] [--tcp PORT] [--pipe] [--script FILE] [--stay]
// --tcp 0 takes a free port and prints it. Without --tcp and --pipe: the pipe on Windows, a free port elsewhere.
// --stay goes on after the end of standard input.
#include <string>
#include "base/number_text.h"
#include "tests/simulator/server.h"
#include "tests/simulator/stand_in_program.h"

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

constexpr const char* kUsage = "stand_in_simulator [--personality NAME] [--tcp PORT] [--pipe] [--script FILE] [--stay]";

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parseOptions(argc, argv, options))
        return standin::explain(kUsage, standin::personalitiesBegin(), standin::personalitiesEnd(),
                                standin::actionUsage());
    standin::Server server(*standin::findPersonality(options.personality),
                           standin::reportsSince(standin::Server::nowMs()));
    if (options.hasPipe && !server.listenPipe(standin::kSimulatorPipe)) {
        standin::say("the pipe cannot be had: a simulator is running");
        return 1;
    }
    const auto port = options.tcpPort >= 0 ? server.listenTcp(static_cast<std::uint16_t>(options.tcpPort)) : 0;
    if (options.tcpPort >= 0 && port == 0) {
        standin::say("port " + std::to_string(options.tcpPort) + " cannot be had");
        return 1;
    }
    server.start();
    standin::say(port ? "listening on port " + std::to_string(port) : "listening on the pipe");
    if (!options.script.empty() && !standin::playFile<standin::TimedAction>(server, options.script)) return 1;
    standin::obeyInput<standin::TimedAction>(server, options.stays);
    return 0;
}
