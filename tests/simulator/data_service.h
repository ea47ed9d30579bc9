// data_service.h - one client's data definitions, and its requests for them: who gets which values at which frame.
// Frames come in as arguments; nothing here reads a clock.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>
#include "tests/simulator/requests.h"
#include "tests/simulator/variables.h"

namespace standin {

enum Period : std::uint32_t { kNever, kOnce, kVisualFrame, kSimFrame, kSecond };
inline constexpr std::uint32_t kChangedFlag = 1;
inline constexpr std::uint32_t kTaggedFlag = 2;

struct Frame {
    std::uint64_t timeMs = 0;
    bool isPaused = false;  // the simulated time stands still
    double simulatedSeconds = 0.0;
    bool hasChanges = true;  // else requests that only want changes get nothing, not even their first answer
};

class DataService {
  public:
    VariableProblem define(const DatumRequest& request);
    bool isDefined(std::uint32_t defineId) const { return definitions_.contains(defineId); }
    bool clearDefinition(std::uint32_t defineId);  // false if there is none

    // Replaces the request of the same id; period kNever ends it. Its definition must exist.
    void request(const DataRequest& request);
    // The user has another aircraft: requests about the old one are over.
    void dropRequests() { requests_.clear(); }

    // The end of a frame: the answers that are due, whole packets.
    std::vector<std::string> endFrame(const Frame& frame, const Aircraft& aircraft, std::uint32_t protocol);

  private:
    struct Datum {
        Variable variable;
        float epsilon;
        std::uint32_t datumId;
    };
    struct Request {
        DataRequest asked;
        std::uint32_t sent = 0;       // answers
        std::uint32_t toSkip = 0;     // periods
        std::uint64_t nextMs = 0;     // of kSecond
        std::vector<double> numbers;  // as last sent
        std::vector<std::string> bytes;
    };

    static bool isPeriodOver(Request& request, const Frame& frame);
    bool answer(Request& request, const Frame& frame, const Aircraft& aircraft, std::uint32_t protocol,
                std::string& packet) const;

    std::map<std::uint32_t, std::vector<Datum>> definitions_;
    std::map<std::uint32_t, Request> requests_;
};

}  // namespace standin
