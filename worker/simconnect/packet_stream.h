// packet_stream.h - cuts what arrives into packets, however the network has split or joined them.
#pragma once
#include <optional>
#include "worker/simconnect/packets.h"

namespace simconnect {

inline constexpr std::size_t kMaxPacketBytes = 1'048'576;  // a simulator's own limit is usually 41088

class PacketStream {
  public:
    // Holds at most the beginning of one packet and what one call adds.
    void add(ByteView bytes);

    // The next whole packet, its header included; valid until the next call of anything here. Nothing if it has not
    // arrived yet, or if the stream is broken.
    std::optional<ByteView> next();

    // A packet's declared size is below its own header's or too large: where the next one starts cannot be known.
    bool isBroken() const { return broken_; }

    // As new.
    void reset();

  private:
    Bytes buffer_;
    std::size_t taken_ = 0;  // bytes of buffer_ that have been handed out
    bool broken_ = false;
};

}  // namespace simconnect
