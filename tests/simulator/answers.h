// answers.h - what the simulator sends: 12 bytes of header (size, the simulator's protocol version, id), then the body.
// Each function makes one whole packet. [any thread]
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace standin {

inline constexpr std::uint32_t kUnknown = 0xFFFFFFFFU;  // no group, no parameter
inline constexpr std::uint32_t kUserObject = 1;         // the user's aircraft, which clients request as 0

enum AnswerId : std::uint32_t {
    kExceptionAnswer = 1,
    kOpenAnswer = 2,
    kQuitAnswer = 3,
    kEventAnswer = 4,
    kEventFilenameAnswer = 6,
    kEventFrameAnswer = 7,
    kDataAnswer = 8,
    kSystemStateAnswer = 15,
};

enum ExceptionCode : std::uint32_t {
    kSizeMismatch = 2,
    kUnrecognizedId = 3,
    kUnopened = 4,
    kVersionMismatch = 5,
    kNameUnrecognized = 7,
    kEventIdDuplicate = 9,
    kInvalidDataType = 18,
    kInvalidDataSize = 19,
    kDataError = 20,
    kAlreadySubscribed = 26,
    kInvalidEnum = 27,
};

// Which simulator is played.
struct Edition {
    const char* name;                          // what it calls itself
    std::uint32_t protocol;                    // in its headers, and the newest it accepts
    std::array<std::uint32_t, 4> application;  // major, minor, build major, build minor
    std::array<std::uint32_t, 4> simConnect;   // same
};
inline constexpr Edition kEdition2020 = {"KittyHawk", 5, {11, 0, 62651, 3}, {11, 0, 62651, 3}};
inline constexpr Edition kEdition2024 = {"SunRise", 6, {12, 2, 282174, 999}, {12, 2, 282174, 999}};

std::string openAnswer(const Edition& edition);
std::string exceptionAnswer(std::uint32_t protocol, ExceptionCode code, std::uint32_t sendId, std::uint32_t parameter);
std::string quitAnswer(std::uint32_t protocol);
std::string eventAnswer(std::uint32_t protocol, std::uint32_t group, std::uint32_t eventId, std::uint32_t data);
std::string filenameAnswer(std::uint32_t protocol, std::uint32_t eventId, std::string_view file);
std::string frameAnswer(std::uint32_t protocol, std::uint32_t eventId, float framesPerSecond);
std::string systemStateAnswer(std::uint32_t protocol, std::uint32_t requestId, std::uint32_t integer,
                              std::string_view text);

struct DataHeader {
    std::uint32_t requestId = 0;
    std::uint32_t defineId = 0;
    std::uint32_t flags = 0;
    std::uint32_t items = 0;  // values, not bytes
};
std::string dataAnswer(std::uint32_t protocol, const DataHeader& header, std::string_view values);

// A packet with any id, for ids that no client knows.
std::string anyAnswer(std::uint32_t protocol, std::uint32_t id, std::string_view body);

}  // namespace standin
