// flight_plan.h - the demonstration's circuit: a voice server laid out like real ones, and the legs that the aircraft
// flies, as one script.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include "tests/client/host_model.h"

// The channels on the server; kChannels has their names.
enum CircuitChannel : std::uint64_t {
    kLobbyChannel = 2,
    kAtisChannel = 4,
    kDeliveryChannel = 5,
    kGroundChannel = 6,
    kTowerChannel = 7,
    kDepartureChannel = 8,
    kApproachChannel = 9,
    kUnicomChannel = 14,
    kCompanyChannel = 16,
};
inline constexpr std::uint64_t kCircuitServer = 1;
inline constexpr std::uint16_t kPilotClient = 7;
inline constexpr std::uint16_t kControllerClient = 11;

// The server's tree with the pilot and a controller in it, and how each channel answers a move.
void layOutServer(HostModel& host);
std::string channelTitle(std::uint64_t channelId);

enum class LegId { kAtis, kDelivery, kTaxi, kApron, kTower, kNobody, kRadio, kDeparture, kCompany, kLinkLoss };

// A simulator that flies in place of the built-in aircraft, as a process of its own.
struct FlightSimulator {
    const char* option;        // that chooses it: "--simconnect"
    const char* name;          // in the flight's record
    const wchar_t* program;    // beside ours
    const wchar_t* arguments;  // with which the worker finds it by itself
    const char* swapReport;    // it prints this when it is told to swap COM1
    const char* loss;          // the script's action after which the worker must have missed it
};
inline constexpr FlightSimulator kFlightSimulators[] = {
    {"--simconnect", "the stand-in simulator", L"stand_in_simulator.exe", L"--pipe", " event COM1_RADIO_SWAP",
     "drop 2"},
    // Nobody says goodbye over UDP: three seconds of silence are a loss.
    {"--xplane", "the stand-in X-Plane", L"stand_in_xplane.exe", L"", " command sim/radios/com1_standy_flip", "drop 5"},
};
// Null for another option.
const FlightSimulator* findFlightSimulator(std::string_view option);
inline constexpr const char* kBuiltInLoss = "drop 2";

// A leg of the circuit; its actions are timed from the leg's start.
struct LegAction {
    double seconds;
    const char* action;  // as docs/file-formats.md lists the script's actions
};
struct Leg {
    LegId id;  // which check the watcher makes (circuit_win.cpp)
    const char* title;
    double shortSeconds;  // as quick as the plugin's own waiting times allow; 0: not part of the short flight
    double fullSeconds;   // as a pilot would fly it
    std::vector<LegAction> actions;

    double seconds(bool isShort) const { return isShort ? shortSeconds : fullSeconds; }
};

// In the order flown. A move counts as confirmed when the plugin looks again 2 s after asking, so a leg that moves the
// pilot lasts at least 2.4 s. loss: the simulator's.
std::vector<Leg> circuitLegs(bool isShort, const char* loss);

// The whole flight as one script, counted from its start.
std::string circuitScript(bool isShort, const char* loss);
