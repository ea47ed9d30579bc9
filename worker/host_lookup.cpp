#include "worker/host_lookup.h"
#include <system_error>
#include <thread>
#include <utility>
#include "base/mutex.h"

struct HostLookup::Shared {
    Mutex mutex;  // for one assignment, by the worker's thread or the lookup's own
    bool done GUARDED_BY(mutex) = false;
    std::vector<NetAddress> found GUARDED_BY(mutex);
};

bool HostLookup::begin(const HostPort& address, const AddressLookUp& lookUp) {
    if (shared_) return true;
    shared_ = std::make_shared<Shared>();
    try {
        std::thread([shared = shared_, lookUp, address] {
            auto found = lookUp(address, false);
            const MutexLock lock(shared->mutex);
            shared->found = std::move(found);
            shared->done = true;
        }).detach();
    } catch (const std::system_error&) {
        shared_.reset();
        return false;
    }
    return true;
}

std::optional<std::vector<NetAddress>> HostLookup::take() {
    std::optional<std::vector<NetAddress>> found;
    if (shared_) {
        const MutexLock lock(shared_->mutex);
        if (shared_->done) found = std::move(shared_->found);
    }
    if (found) shared_.reset();
    return found;
}
