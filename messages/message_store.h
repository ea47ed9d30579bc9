// message_store.h - the text messages received, the newest kMaxMessages of them, until the client ends.
// The message lock guards the queue; it is held for a copy of one message or an assignment. The counters are atomics
// beside it, changed after the lock is released: a painter may see a new message one frame before the new count.
#pragma once
#include <atomic>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include "base/mutex.h"

inline constexpr std::size_t kMaxMessages = 40;

// The host's text-message targets.
enum MessageTarget : std::uint32_t {
    kPrivateMessage = 1,
    kChannelMessage = 2,
    kServerMessage = 3,
};

struct TextMessage {
    std::string sender;            // UTF-8 as the host gave it, may be empty
    std::string text;              // UTF-8 as the host gave it, not empty
    std::uint64_t receivedMs = 0;  // tick
    std::uint32_t target = 0;      // MessageTarget, or whatever the host says
    std::uint16_t senderId = 0;
};

struct MessageStore {
    Mutex mutex;
    std::deque<TextMessage> messages GUARDED_BY(mutex);  // oldest first
    std::uint32_t received GUARDED_BY(mutex) = 0;        // messages ever kept: the number of the newest
    std::atomic<std::int32_t> unread{0};                 // [host][dialog] +1 per message; [ui] 0 when seen; [any] loads
    std::atomic<std::uint32_t> revision{0};              // +1 per change of the queue; [any] loads
};

// [any] Keeps a message and drops the oldest when there are too many; an empty text is ignored. Returns the message's
// number, which no other one of this store has; 0 for an empty text. When memory is short the oldest ones make room for
// it; 0 if that is not enough: the client's own window shows it all the same.
std::uint32_t addMessage(MessageStore& store, std::string_view sender, std::string_view text, std::uint32_t target,
                         std::uint16_t senderId, std::uint64_t nowMs) noexcept;

// [any] Forgets all messages; returns how many were unread.
std::int32_t clearMessages(MessageStore& store);

// [any] How many messages there are, 0..kMaxMessages.
std::int32_t countMessages(MessageStore& store);

// What a page shows: one message, and where it stands among the others.
struct PageSnapshot {
    TextMessage message;  // empty if there are none
    std::int32_t page = 0;
    std::int32_t count = 0;
    std::uint32_t revision = 0;
};
// [any] The message of a page, 0 the newest; of the nearest one if there are not so many.
PageSnapshot copyPage(MessageStore& store, std::int32_t page);
// [any] The same for the page on which the message of that number now stands. Nothing if it is no longer there.
std::optional<PageSnapshot> copyNumbered(MessageStore& store, std::uint32_t number);
