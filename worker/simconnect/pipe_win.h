// pipe_win.h - the simulator on this computer, through its named pipe. Reads and writes are overlapped, so nothing
// waits.
#pragma once
#include <windows.h>
#include <array>
#include <deque>
#include <vector>
#include "base/handle_win.h"
#include "worker/simconnect/transport.h"

namespace simconnect {

inline constexpr const char* kPipeName = R"(\\.\pipe\Microsoft Flight Simulator\SimConnect)";

class PipeTransport : public Transport {
  public:
    PipeTransport();
    ~PipeTransport() override;
    PipeTransport(const PipeTransport&) = delete;
    PipeTransport& operator=(const PipeTransport&) = delete;

    void connect() override;
    void close() override;
    TransportState poll(std::uint64_t nowMs) override;
    std::size_t receive(std::span<std::uint8_t> into) override;
    bool send(std::span<const std::uint8_t> packet) override;
    std::string problem() const override { return problem_; }
    void* wakeHandle() const override;

  private:
    // The system uses both until the write is over, so a write stays in place until then. It has an event of its own:
    // waiting for the pipe itself would end with any other read or write.
    struct Write {
        OVERLAPPED overlapped{};
        std::vector<std::uint8_t> bytes;
        OwnedHandle event;
    };

    void tryOpen();
    void beginRead();
    void finishRead();
    void dropFinishedWrites();
    void end(DWORD error);

    HANDLE pipe_ = INVALID_HANDLE_VALUE;
    OwnedHandle readEvent_;  // signalled when the read under way is over
    OVERLAPPED read_{};
    bool reading_ = false;
    std::array<std::uint8_t, 16'384> buffer_{};
    std::size_t filled_ = 0;  // bytes in buffer_
    std::size_t taken_ = 0;   // of them, handed out
    std::deque<Write> writes_;
    std::size_t unsentBytes_ = 0;
    TransportState state_ = TransportState::kClosed;
    int busyTries_ = 0;
    std::string problem_;
};

}  // namespace simconnect
