// pilot_texts.h - what the worker tells the pilot: "status" and "ack_message" of telemetry.json, plain English on one
// line of at most kMaxPilotBytes. All its words stand here, so that their length can be checked; those of an
// acknowledgement follow the name of the radio and its slot. [any]
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include "exchange/telemetry_text.h"

namespace pilot {

// --- "status": how the link is. The lines that stand as they are ---

inline constexpr const char* kWaitingForSimulator = "waiting for the simulator";
inline constexpr const char* kConnecting = "connecting to the simulator";
inline constexpr const char* kLinkLost = "simulator link lost";
inline constexpr const char* kInMenu = "simulator in menu";
inline constexpr const char* kReadingRadios = "reading the radios";
inline constexpr const char* kNoData = "the simulator sends no data";
inline constexpr const char* kFlying = "flying";
inline constexpr const char* kPaused = "paused";
inline constexpr const char* kBuiltInAircraft = "built-in aircraft";
inline constexpr const char* kRefusesConnection = "the simulator refuses the connection";
inline constexpr const char* kMakesNoSense = "the simulator's answer makes no sense";
inline constexpr const char* kClosesAtOnce = "the simulator closes the connection at once";
inline constexpr const char* kDoesNotAnswer = "the simulator does not answer";
inline constexpr const char* kDoesNotRead = "the simulator does not read what it is told";
inline constexpr const char* kTakesNoMore = "the simulator takes no more programs";
inline constexpr const char* kRefusesUser = "the simulator refuses this user's programs";
// X-Plane is heard but says nothing of its radios; a version that has a switch for that may have been told not to.
inline constexpr const char* kMenuOrSwitch = "X-Plane silent: menu, or Settings, Network";
inline constexpr const char* kMenuOrLoading = "X-Plane is silent: loading or in its menu";
inline constexpr std::array kFixedStatuses = {
    kWaitingForSimulator, kConnecting,        kLinkLost,      kInMenu,       kReadingRadios, kNoData,      kFlying,
    kBuiltInAircraft,     kRefusesConnection, kMakesNoSense,  kClosesAtOnce, kDoesNotAnswer, kDoesNotRead, kTakesNoMore,
    kRefusesUser,         kMenuOrSwitch,      kMenuOrLoading,
};

// --- and those that name something ---

// A host too long for the line is cut and ends in three dots. The report for support masks what follows these words.
inline constexpr std::string_view kNoAnswerFrom = "no answer from ";
inline constexpr std::string_view kNoSuchComputer = "no such computer: ";
inline constexpr std::string_view kNoThreadToLook = "no thread to look ";
std::string noAnswerText(std::string_view host);
std::string noSuchComputerText(std::string_view host);
std::string noThreadText(std::string_view host);  // to look it up with

// error: the system's own number.
std::string notReachableText(std::uint32_t error);
std::string readingFailedText(std::uint32_t error);

// What keeps a radio from being used.
inline constexpr std::string_view kNotFitted = "not in this aircraft";
inline constexpr std::string_view kUnpowered = "unpowered";
inline constexpr std::string_view kFailed = "failed";
inline constexpr std::string_view kNotUsable = "not usable";
inline constexpr std::string_view kNotKnown = "not known";
inline constexpr std::array kRadioFaults = {kNotFitted, kUnpowered, kFailed, kNotUsable, kNotKnown};

// "COM1 unpowered, COM2 not in this aircraft"; empty when nothing keeps either from being used.
std::string radioFaultsText(std::string_view com1, std::string_view com2);

// "flying, X-Plane 12.2.0", "paused, X-Plane 12.2.0", "X-Plane 12.2.0: COM1 unpowered"; without the name where that is
// too long. faults as radioFaultsText has them.
std::string radiosText(std::string_view simulator, const std::string& faults, bool isPaused = false);

// --- "ack_message": what became of a command ---

inline constexpr const char* kNewWorker = "CONNECTED";  // there has been none
inline constexpr const char* kRefused = "refused";      // by the aircraft
inline constexpr const char* kRefusedForGood = "refused; not tried again";
inline constexpr const char* kNoLink = "not written: link down";
inline constexpr const char* kNoChannel = "is not a channel";  // behind the frequency
inline constexpr const char* kOutOfRange = "is out of range";  // behind the volume
// The simulator has had no chance to carry it out.
inline constexpr const char* kUnchangedInPause = "unchanged; simulator paused";
inline constexpr const char* kUnchangedInSilence = "unchanged; simulator silent";
inline constexpr const char* kUnchangedUnread = "unchanged; simulator not reading";

// "refused; shows 121.490": the aircraft has set something else.
std::string refusedText(std::string_view shown);

// The text itself, or its beginning if it is too long for the line.
std::string pilotLine(std::string_view text);

}  // namespace pilot
