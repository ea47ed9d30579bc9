#include "worker/simconnect/packet_stream.h"

namespace simconnect {

void PacketStream::add(ByteView bytes) {
    if (broken_) return;
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(taken_));
    taken_ = 0;
    buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

std::optional<ByteView> PacketStream::next() {
    const auto rest = ByteView(buffer_).subspan(taken_);
    if (broken_ || rest.size() < 4) return std::nullopt;
    const std::size_t size = declaredSize(rest);
    if (size < kReceivedHeaderBytes || size > kMaxPacketBytes) {
        broken_ = true;
        return std::nullopt;
    }
    if (rest.size() < size) return std::nullopt;
    taken_ += size;
    return rest.first(size);
}

void PacketStream::reset() {
    *this = PacketStream();
}

}  // namespace simconnect
