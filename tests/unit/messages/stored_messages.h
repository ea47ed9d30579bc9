// stored_messages.h - all that a message store holds at one moment, for tests; the product only ever copies one
// message.
#pragma once
#include <deque>
#include "messages/message_store.h"

struct StoredMessages {
    std::deque<TextMessage> messages;  // oldest first
    std::int32_t unread = 0;
    std::uint32_t revision = 0;
};

inline StoredMessages storedMessages(MessageStore& store) {
    StoredMessages stored{{}, store.unread, store.revision};
    const MutexLock lock(store.mutex);
    stored.messages = store.messages;
    return stored;
}
