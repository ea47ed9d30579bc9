// flight_record.h - the flight for programs to read (tools/page): a first line with the version, then one line per
// event, "milliseconds<TAB>event<TAB>what<TAB>value", in chronological order.
#pragma once
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

enum class FlightEvent {
    kFlight,   // "short" or "full"; the aircraft's name
    kLeg,      // nothing; the title
    kActive,   // "COM1", "COM2"; kHz, 0 unknown
    kStandby,  // the same
    kLink,     // "up" or "down"; what the worker says about it
    kChannel,  // nothing; the name of the channel that the pilot is in
    kRequest,  // nothing; the name of the channel that the plugin asks for
    kRefusal,  // "server" or "aircraft"; why
    kAnswer,   // "aircraft"; what the worker has done
    kMessage,  // the sender; the text
    kSound,    // nothing; the name of the sound's file
    kTalk,     // "pilot" or "controller"; "on", "off"
    kLamp,     // "TX", "RX", "TEXT"; "on", "off"
    kPilot,    // nothing; what the pilot does
    kCheck,    // "ok", "failed"; the sentence
    kEnd,      // checks that passed; checks
};
inline constexpr const char* kFlightEventNames[] = {"flight",  "leg",     "active", "standby", "link",  "channel",
                                                    "request", "refusal", "answer", "message", "sound", "talk",
                                                    "lamp",    "pilot",   "check",  "end"};
static_assert(std::size(kFlightEventNames) == static_cast<std::size_t>(FlightEvent::kEnd) + 1);

class FlightRecord {
  public:
    explicit FlightRecord(const std::filesystem::path& file);
    // Written at once: a flight that ends early leaves what it has recorded.
    void add(std::uint64_t atMs, FlightEvent event, const std::string& what, const std::string& value);

  private:
    std::ofstream file_;
};
