// host_lookup.h - the addresses of a computer with a name, looked up on a thread of its own: that may take many
// seconds. Used from one thread.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <vector>
#include "worker/net_address.h"

inline constexpr std::uint64_t kLookUpLimitMs = 10'000;  // then the name counts as unknown

// Like lookUp (net_address.h). Called on a thread of its own, which may outlast whoever began it.
using AddressLookUp = std::function<std::vector<NetAddress>(const HostPort& address, bool literalOnly)>;

class HostLookup {
  public:
    // Begins, unless one is still running: then its result will be this one's as well. False if the system has no
    // thread for it.
    bool begin(const HostPort& address, const AddressLookUp& lookUp);
    bool isRunning() const { return shared_ != nullptr; }

    // What has been found, once, perhaps nothing; no value while the search goes on.
    std::optional<std::vector<NetAddress>> take();

  private:
    struct Shared;  // with the thread; the last to let go frees it

    std::shared_ptr<Shared> shared_;
};
