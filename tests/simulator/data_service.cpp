#include "tests/simulator/data_service.h"
#include <cmath>
#include <utility>
#include "tests/simulator/answers.h"
#include "tests/simulator/wire.h"

namespace standin {

VariableProblem DataService::define(const DatumRequest& request) {
    Variable variable;
    const auto problem = findVariable(request.name, request.units, request.type, variable);
    if (problem == VariableProblem::kNone)
        definitions_[request.defineId].push_back({variable, request.epsilon, request.datumId});
    return problem;
}

bool DataService::clearDefinition(std::uint32_t defineId) {
    return definitions_.erase(defineId) > 0;
}

void DataService::request(const DataRequest& request) {
    requests_.erase(request.requestId);
    if (request.period == kNever) return;
    Request& kept = requests_[request.requestId];
    kept.asked = request;
    kept.toSkip = request.origin;
}

std::vector<std::string> DataService::endFrame(const Frame& frame, const Aircraft& aircraft, std::uint32_t protocol) {
    std::vector<std::string> packets;
    for (auto entry = requests_.begin(); entry != requests_.end();) {
        Request& request = entry->second;
        std::string packet;
        if (isPeriodOver(request, frame) && answer(request, frame, aircraft, protocol, packet)) {
            packets.push_back(std::move(packet));
            request.sent++;
            request.toSkip = request.asked.interval;
        }
        const bool isLast = request.asked.period == kOnce || request.sent == request.asked.limit;
        entry = request.sent > 0 && isLast ? requests_.erase(entry) : std::next(entry);
    }
    return packets;
}

bool DataService::isPeriodOver(Request& request, const Frame& frame) {
    if (request.asked.period == kSimFrame && frame.isPaused) return false;
    if ((request.asked.flags & kChangedFlag) != 0 && !frame.hasChanges) return false;
    if (request.asked.period == kSecond) {
        if (frame.timeMs < request.nextMs) return false;
        request.nextMs = (request.nextMs == 0 ? frame.timeMs : request.nextMs) + 1000;
    }
    if (request.toSkip == 0) return true;
    request.toSkip--;
    return false;
}

// False if nothing has changed for a request that only wants changes; its first answer is always sent.
bool DataService::answer(Request& request, const Frame& frame, const Aircraft& aircraft, std::uint32_t protocol,
                         std::string& packet) const {
    const auto definition = definitions_.find(request.asked.defineId);
    if (definition == definitions_.end()) return false;
    const auto& data = definition->second;
    const bool isFirst = request.bytes.size() != data.size();
    const bool wantsChanges = (request.asked.flags & kChangedFlag) != 0 && !isFirst;
    const bool isTagged = (request.asked.flags & kTaggedFlag) != 0;
    if (isFirst) {
        request.numbers.resize(data.size());
        request.bytes.resize(data.size());
    }
    std::vector<bool> isChanged(data.size());
    bool isAnyChanged = false;
    for (std::size_t i = 0; i < data.size(); i++) {
        const double number = numberOf(data[i].variable, aircraft, frame.simulatedSeconds);
        std::string bytes;
        putValue(bytes, data[i].variable, aircraft, frame.simulatedSeconds);
        isChanged[i] = isFirst || (bytes != request.bytes[i] &&
                                   (number == request.numbers[i] ||  // a text
                                    std::abs(number - request.numbers[i]) > static_cast<double>(data[i].epsilon)));
        isAnyChanged = isAnyChanged || isChanged[i];
        if (!isChanged[i] && wantsChanges) continue;
        request.numbers[i] = number;
        request.bytes[i] = std::move(bytes);
    }
    if (wantsChanges && !isAnyChanged) return false;

    DataHeader header{request.asked.requestId, request.asked.defineId, request.asked.flags, 0};
    std::string values;
    for (std::size_t i = 0; i < data.size(); i++) {
        if (isTagged && wantsChanges && !isChanged[i]) continue;
        if (isTagged) putU32(values, data[i].datumId);
        values += request.bytes[i];
        header.items++;
    }
    packet = dataAnswer(protocol, header, values);
    return true;
}

}  // namespace standin
