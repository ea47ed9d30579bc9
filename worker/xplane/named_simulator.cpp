#include "worker/xplane/named_simulator.h"
#include <algorithm>
#include <utility>
#include "worker/pilot_texts.h"

namespace xplane {

NamedSimulator::NamedSimulator(HostPort address, AddressLookUp lookUp)
    : address_(std::move(address)), lookUp_(std::move(lookUp)) {}

void NamedSimulator::poll(bool speaks, std::uint64_t nowMs) {
    if (speaks) {
        turns_.noteWorks();
        problem_.clear();
        return;
    }
    if (lookup_.isRunning()) awaitAddresses(nowMs);
    const bool isTurnOver = !turns_.isBegun() || turns_.isOver(nowMs);
    if (!isTurnOver || takeNext(nowMs) || lookup_.isRunning()) return;
    // All have had their turn, or there was none to have it.
    if (present_) problem_ = pilot::noAnswerText(address_.host);
    lookAgain(nowMs);
}

// A number needs no lookup, and what was looked up just now would be the same again.
void NamedSimulator::lookAgain(std::uint64_t nowMs) {
    if (!lookedUpMs_ || nowMs - *lookedUpMs_ >= kLookUpAgainMs) {
        lookedUpMs_ = nowMs;
        use(lookUp_(address_, true));
        if (found_.empty() && !lookup_.begin(address_, lookUp_)) problem_ = pilot::noThreadText(address_.host);
    }
    turns_.begin(found_);
    takeNext(nowMs);
}

void NamedSimulator::awaitAddresses(std::uint64_t nowMs) {
    auto found = lookup_.take();
    const bool isUnknown = found ? !use(std::move(*found)) : nowMs - *lookedUpMs_ >= kLookUpLimitMs;
    if (found) turns_.begin(found_);
    if (isUnknown) problem_ = pilot::noSuchComputerText(address_.host);
}

// True if any of them is one that X-Plane can be asked at.
bool NamedSimulator::use(std::vector<NetAddress> addresses) {
    std::erase_if(addresses, [](const NetAddress& address) { return !endpointOf(address); });
    found_ = std::move(addresses);
    return !found_.empty();
}

bool NamedSimulator::takeNext(std::uint64_t nowMs) {
    const auto next = turns_.next(nowMs);
    if (next) present_ = endpointOf(*next);
    return next.has_value();
}

}  // namespace xplane
