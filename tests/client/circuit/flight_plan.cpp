#include "tests/client/circuit/flight_plan.h"
#include "base/number_text.h"

namespace {

struct ChannelRow {
    std::uint64_t id;
    const char* name;
};

// Spacers, an ATIS, two frequencies in one name, comma decimals, and names that only look like a frequency.
constexpr ChannelRow kChannels[] = {
    {1, "[cspacer0]━━━ Flight deck ━━━"},
    {kLobbyChannel, "Lobby"},
    {3, "[*spacer1]___"},
    {kAtisChannel, "ATIS ZSPD 127.850"},
    {kDeliveryChannel, "Clearance Delivery 121.600"},
    {kGroundChannel, "Ground 121.700 / Apron 121.900"},
    {kTowerChannel, "Tower 118.105 (8.33)"},
    {kDepartureChannel, "Departure 124.350"},
    {kApproachChannel, "118,275 Approach"},
    {10, "[cspacer2]Uncontrolled"},
    {11, "UNICOM 122.8"},
    {12, "Relay 1122.800"},
    {13, "Old UNICOM 122.8005"},
    {kUnicomChannel, "UNICOM 122,800"},
    {15, "UNICOM 122.800 (overflow)"},
    {kCompanyChannel, "Company 131.500"},
};

}  // namespace

void layOutServer(HostModel& host) {
    host.addServer(kCircuitServer, kPilotClient, kLobbyChannel);
    for (const auto& row : kChannels) {
        HostChannel channel;
        channel.id = row.id;
        channel.name = row.name;
        host.addChannel(kCircuitServer, channel);
    }
    host.addClient(kCircuitServer, kControllerClient, kTowerChannel);
    host.setCurrentServer(kCircuitServer);

    MoveRule answer;
    host.setMoveRule(answer);
    answer.delayMs = 400;
    host.setMoveRule(kTowerChannel, answer);
    answer.answer = MoveAnswer::kRefuseLater;
    answer.delayMs = 150;
    host.setMoveRule(kDepartureChannel, answer);
    answer.answer = MoveAnswer::kSilence;
    host.setMoveRule(kCompanyChannel, answer);
}

std::string channelTitle(std::uint64_t channelId) {
    for (const auto& row : kChannels)
        if (row.id == channelId) return row.name;
    return "channel " + std::to_string(channelId);
}

const FlightSimulator* findFlightSimulator(std::string_view option) {
    for (const auto& row : kFlightSimulators) {
        if (option == row.option) return &row;
    }
    return nullptr;
}

std::vector<Leg> circuitLegs(bool isShort, const char* loss) {
    // clang-format off
    std::vector<Leg> legs = {
        {LegId::kAtis, "Listening to the ATIS", 0, 12,
            {{0, "tune COM1 active 127.850"}}},
        {LegId::kDelivery, "Calling delivery: the knob is followed once it stands still", 3.1, 12,
            {{0, "tune COM1 active 121.650"}, {0.2, "tune COM1 active 121.675"}, {0.4, "tune COM1 active 121.600"}}},
        {LegId::kTaxi, "Taxiing: two frequencies in one channel's name", 0, 12,
            {{0, "tune COM1 active 121.900"}}},
        {LegId::kApron, "Ground to apron: already there", 0, 8,
            {{0, "tune COM1 active 121.700"}}},
        {LegId::kTower, "Take-off: the tower's server is slow", 0, 12,
            {{0, "tune COM1 active 118.105"}}},
        {LegId::kNobody, "Nobody on 133.330; a word on the old frequency; COM2's volume knob is dead", 3.2, 14,
            {{0, "tune COM1 active 133.330"}, {0, "tune COM1 standby 122.775"}, {0, "tune COM2 active 124.350"},
             {0, "ignore COM2 volume"}}},
        {LegId::kRadio, "Practice area: tuned and swapped on the panel", 3.6, 14,
            {}},
        {LegId::kDeparture, "Departure refuses, then has room", 6.8, 14,
            {{0, "tune COM1 active 124.350"}}},
        {LegId::kCompany, "The company never answers; approach is next", 9.0, 16,
            {{0, "tune COM1 active 131.500"}, {5.3, "tune COM1 active 118.275"}}},
        {LegId::kLinkLoss, "The simulator goes away and comes back", 0, 8,
            {{0, loss}}},
    };
    // clang-format on
    if (isShort) std::erase_if(legs, [](const Leg& leg) { return leg.shortSeconds == 0; });
    return legs;
}

std::string circuitScript(bool isShort, const char* loss) {
    std::string script = "# seconds  action\n";
    double start = 0.0;
    for (const Leg& leg : circuitLegs(isShort, loss)) {
        script += std::string("# ") + leg.title + '\n';
        for (const LegAction& action : leg.actions)
            script += formatFixed(start + action.seconds, 2) + ' ' + action.action + '\n';
        start += leg.seconds(isShort);
    }
    return script;
}
