// requests.h - who has asked for which values, and which of them are due in a frame.
// Frames come in as arguments; nothing here reads a clock.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>
#include "tests/xplane/datagrams.h"
#include "tests/xplane/rough_network.h"

namespace xstandin {

class Requests {
  public:
    // A client's wish for a value so often a second, under an index of its own; in place of what it asked for under
    // that index before. 0 times or fewer ends it.
    void ask(const Endpoint& client, const Request& request, std::uint64_t nowMs);
    void clear() { clients_.clear(); }
    std::size_t count(const Endpoint& client) const;

    struct Due {
        std::int32_t index;
        std::string_view name;  // as long as nobody asks anything
    };
    // Each client with what is due for it now, and so not again until its time has passed.
    std::map<Endpoint, std::vector<Due>> takeDue(std::uint64_t nowMs);
    std::vector<Endpoint> clients() const;

  private:
    struct Wish {
        std::string name;
        double everyMs = 0.0;
        double dueMs = 0.0;
    };
    std::map<Endpoint, std::map<std::int32_t, Wish>> clients_;
};

}  // namespace xstandin
