#include "tests/xplane/requests.h"
#include <algorithm>

namespace xstandin {

void Requests::ask(const Endpoint& client, const Request& request, std::uint64_t nowMs) {
    auto& wishes = clients_[client];
    if (request.perSecond > 0)
        wishes[request.index] = {request.name, 1000.0 / request.perSecond, static_cast<double>(nowMs)};
    else
        wishes.erase(request.index);
    if (wishes.empty()) clients_.erase(client);
}

std::size_t Requests::count(const Endpoint& client) const {
    const auto found = clients_.find(client);
    return found == clients_.end() ? 0 : found->second.size();
}

std::map<Endpoint, std::vector<Requests::Due>> Requests::takeDue(std::uint64_t nowMs) {
    const auto now = static_cast<double>(nowMs);
    std::map<Endpoint, std::vector<Due>> due;
    for (auto& [client, wishes] : clients_) {
        for (auto& [index, wish] : wishes) {
            if (wish.dueMs > now) continue;
            due[client].push_back({index, wish.name});
            // On average as often as asked for, but nothing is made up for after a silence.
            wish.dueMs = std::max(wish.dueMs + wish.everyMs, now);
        }
    }
    return due;
}

std::vector<Endpoint> Requests::clients() const {
    std::vector<Endpoint> all;
    for (const auto& [client, wishes] : clients_) all.push_back(client);
    return all;
}

}  // namespace xstandin
