// simconnect_stream_fuzz.cpp - any bytes as what a simulator sends, from the stream up to the radios' snapshot.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include "worker/simconnect/simconnect_link.h"

namespace {

// Every other connection begins with a proper opening and a running flight, so that the rest reaches the session.
class FuzzTransport : public simconnect::Transport {
  public:
    explicit FuzzTransport(simconnect::ByteView bytes) : rest_(bytes) {}
    void connect() override {
        open_ = true;
        head_.clear();
        if (connects_++ % 2 != 0) return;
        packet(308, 2, {});
        packet(284, 15, {1, 1});
    }
    void close() override { open_ = false; }
    simconnect::TransportState poll(std::uint64_t) override {
        if (rest_.empty()) open_ = false;
        return open_ ? simconnect::TransportState::kOpen : simconnect::TransportState::kClosed;
    }
    std::size_t receive(std::span<std::uint8_t> into) override {
        if (!open_) return 0;
        if (!head_.empty()) return take(head_, into, head_.size());
        // The first byte of each piece says how long it is.
        if (rest_.empty()) return 0;
        const std::size_t length = rest_[0];
        rest_ = rest_.subspan(1);
        std::vector<std::uint8_t> piece(rest_.begin(),
                                        rest_.begin() + static_cast<std::ptrdiff_t>(std::min(length, rest_.size())));
        rest_ = rest_.subspan(piece.size());
        return take(piece, into, piece.size());
    }
    bool send(std::span<const std::uint8_t>) override { return open_; }
    std::string problem() const override { return {}; }
    bool isDone() const { return rest_.empty(); }

  private:
    static std::size_t take(std::vector<std::uint8_t>& from, std::span<std::uint8_t> into, std::size_t count) {
        count = std::min(count, into.size());
        std::copy_n(from.begin(), count, into.begin());
        from.clear();
        return count;
    }
    void packet(std::uint32_t size, std::uint32_t id, const std::vector<std::uint32_t>& fields) {
        const auto start = head_.size();
        const auto number = [&](std::uint32_t value) {
            for (int shift = 0; shift < 32; shift += 8) head_.push_back(static_cast<std::uint8_t>(value >> shift));
        };
        number(size);
        number(5);
        number(id);
        for (const auto field : fields) number(field);
        head_.resize(start + size);
    }

    simconnect::ByteView rest_;
    std::vector<std::uint8_t> head_;
    int connects_ = 0;
    bool open_ = false;
};

bool isSound(const RadioReading& radio) {
    const auto inBand = [](std::int32_t khz) { return khz == 0 || (khz >= kBandMinKHz && khz <= kBandMaxKHz); };
    return inBand(radio.active) && inBand(radio.standby) && radio.spacing >= -1 && radio.spacing <= 1 &&
           (radio.volume == -1.0 || (radio.volume >= 0.0 && radio.volume <= 1.0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto owned = std::make_unique<FuzzTransport>(simconnect::ByteView(data, size));
    const auto& transport = *owned;
    simconnect::SimConnectLink link(std::move(owned));
    std::uint64_t nowMs = 1000;
    for (int pass = 0; pass < 200 && !transport.isDone(); pass++) {
        link.poll(nowMs += 250);
        const auto& sim = link.snapshot();
        for (const auto& radio : sim.radios) {
            if (!isSound(radio)) std::abort();
            if (!sim.ok && !(radio == RadioReading())) std::abort();
        }
        if (sim.status.empty()) std::abort();
        link.write({static_cast<std::size_t>(pass & 1), static_cast<RadioSlot>(pass / 2 % 4), 0.5}, nowMs);
        link.takeNotes();
    }
    return 0;
}
