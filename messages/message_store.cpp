#include "messages/message_store.h"
#include <algorithm>

namespace {

PageSnapshot copyAt(const MessageStore& store, std::int32_t page, std::uint32_t revision) REQUIRES(store.mutex) {
    PageSnapshot snapshot;
    snapshot.revision = revision;
    snapshot.count = static_cast<std::int32_t>(store.messages.size());
    if (snapshot.count == 0) return snapshot;
    snapshot.page = std::clamp(page, 0, snapshot.count - 1);
    snapshot.message = store.messages[static_cast<std::size_t>(snapshot.count - 1 - snapshot.page)];
    return snapshot;
}

// Without memory nothing is changed.
std::uint32_t keepMessage(MessageStore& store, TextMessage message) {
    const MutexLock lock(store.mutex);
    store.messages.push_back(std::move(message));
    if (store.messages.size() > kMaxMessages) store.messages.pop_front();
    return ++store.received;
}

// False if there is none.
bool dropOldest(MessageStore& store) {
    const MutexLock lock(store.mutex);
    if (store.messages.empty()) return false;
    store.messages.pop_front();
    return true;
}

}  // namespace

std::uint32_t addMessage(MessageStore& store, std::string_view sender, std::string_view text, std::uint32_t target,
                         std::uint16_t senderId, std::uint64_t nowMs) noexcept {
    if (text.empty()) return 0;
    std::uint32_t number = 0;
    for (int tries = 1; number == 0; tries++) {
        try {
            number = keepMessage(store, {std::string(sender), std::string(text), nowMs, target, senderId});
        } catch (...) {
            // Memory may come back the next moment. If not, the oldest messages make room for this one.
            if (tries > 1 && !dropOldest(store)) return 0;
        }
    }
    ++store.unread;
    ++store.revision;
    return number;
}

std::int32_t clearMessages(MessageStore& store) {
    std::deque<TextMessage> cleared;  // freed after the lock
    {
        const MutexLock lock(store.mutex);
        cleared.swap(store.messages);
    }
    const std::int32_t unread = store.unread.exchange(0);
    ++store.revision;
    return unread;
}

std::int32_t countMessages(MessageStore& store) {
    const MutexLock lock(store.mutex);
    return static_cast<std::int32_t>(store.messages.size());
}

// Both read the revision first: a message that arrives in between is laid out once more, for its own revision.
PageSnapshot copyPage(MessageStore& store, std::int32_t page) {
    const std::uint32_t revision = store.revision;
    const MutexLock lock(store.mutex);
    return copyAt(store, page, revision);
}

std::optional<PageSnapshot> copyNumbered(MessageStore& store, std::uint32_t number) {
    const std::uint32_t revision = store.revision;
    const MutexLock lock(store.mutex);
    const std::uint32_t page = store.received - number;
    if (page >= store.messages.size()) return std::nullopt;
    return copyAt(store, static_cast<std::int32_t>(page), revision);
}
