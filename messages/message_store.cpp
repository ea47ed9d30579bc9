#include "messages/message_store.h"

void addMessage(MessageStore& store, std::string_view sender, std::string_view text, std::uint32_t target,
                std::uint16_t senderId, std::uint64_t nowMs) {
    if (text.empty()) return;
    {
        TextMessage message{std::string(sender), std::string(text), nowMs, target, senderId};
        const MutexLock lock(store.mutex);
        if (store.messages.size() >= kMaxMessages) store.messages.pop_front();
        store.messages.push_back(std::move(message));
    }
    ++store.unread;
    ++store.revision;
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

MessageSnapshot copyMessages(MessageStore& store) {
    // Counters first: a message that arrives in between is laid out once more, for its own revision.
    MessageSnapshot snapshot{{}, store.unread, store.revision};
    const MutexLock lock(store.mutex);
    snapshot.messages = store.messages;
    return snapshot;
}
