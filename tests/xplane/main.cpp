// main.cpp - stand_in_xplane: plays X-Plane for whoever asks, and prints what its clients do, one line each:
// milliseconds since the start, then the report. Reads actions from standard input, one per line; "play FILE" flies a
// script from then on. Ends with the action "exit", or with the end of standard input.
//   stand_in_xplane [--personality NAME] [--listen HOST:PORT] [--beacon HOST:PORT | --no-beacon] [--computer NAME]
//                   [--script FILE] [--stay]
// It listens on 127.0.0.1:49000 and announces itself to the group 239.255.1.1:49707 on this computer only; addresses
// are IPv4 numbers, of this computer. Port 0 takes a free one. --stay goes on after the end of standard input.
#include <string>
#include "tests/simulator/stand_in_program.h"
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

constexpr const char* kUsage =
    "stand_in_xplane [--personality NAME] [--listen HOST:PORT] [--beacon HOST:PORT | --no-beacon]\n"
    "                       [--computer NAME] [--script FILE] [--stay]";

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parseOptions(argc, argv, options))
        return standin::explain(kUsage, xstandin::personalitiesBegin(), xstandin::personalitiesEnd(),
                                xstandin::actionUsage());
    xstandin::Server server(*xstandin::findPersonality(options.personality),
                            standin::reportsSince(xstandin::Server::nowMs()));
    const auto port = server.start(options.places);
    if (port == 0) {
        standin::say(textOf(options.places.own) + " cannot be had: an X-Plane is running");
        return 1;
    }
    standin::say("listening on port " + std::to_string(port));
    if (!options.script.empty() && !standin::playFile<xstandin::TimedAction>(server, options.script)) return 1;
    standin::obeyInput<xstandin::TimedAction>(server, options.stays);
    return 0;
}
