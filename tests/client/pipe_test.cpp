// pipe_test.cpp - the simulator's pipe as the worker opens it, while others have it.
#include <gtest/gtest.h>
#include <windows.h>
#include <memory>
#include <utility>
#include "tests/client/worker_at_work_win.h"
#include "worker/pilot_texts.h"
#include "worker/simconnect/pipe_win.h"
#include "worker/simconnect/simconnect_link.h"

namespace {

using simconnect::PipeTransport;
using simconnect::TransportState;

constexpr std::uint64_t kNowMs = 1'000;  // the pipe does not care

// The simulator's pipe with one instance, which another program holds.
class FullPipe {
  public:
    FullPipe()
        : server_(CreateNamedPipeA(simconnect::kPipeName, PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED, PIPE_TYPE_BYTE, 1,
                                   4096, 4096, 0, nullptr)),
          guest_(
              CreateFileA(simconnect::kPipeName, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)),
          connected_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    ~FullPipe() {
        if (guest_ != INVALID_HANDLE_VALUE) CloseHandle(guest_);
        if (isListening_) {
            CancelIoEx(server_, &listening_);
            DWORD ignored = 0;
            GetOverlappedResult(server_, &listening_, &ignored, TRUE);
        }
        if (server_ != INVALID_HANDLE_VALUE) CloseHandle(server_);
        CloseHandle(connected_);
    }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;

    bool isFull() const { return server_ != INVALID_HANDLE_VALUE && guest_ != INVALID_HANDLE_VALUE; }
    bool hasVisitor() const { return isListening_ && HasOverlappedIoCompleted(&listening_); }
    // The guest leaves, and the simulator waits for the next one.
    bool makeRoom() {
        CloseHandle(std::exchange(guest_, INVALID_HANDLE_VALUE));
        DisconnectNamedPipe(server_);
        listening_.hEvent = connected_;
        isListening_ = !ConnectNamedPipe(server_, &listening_) && GetLastError() == ERROR_IO_PENDING;
        return isListening_;
    }

  private:
    HANDLE server_;
    HANDLE guest_;
    HANDLE connected_;
    OVERLAPPED listening_ = {};
    bool isListening_ = false;
};

}  // namespace

TEST(SimulatorPipe, ThatIsFullIsTriedForSomePassesAndThenSaidToBeFull) {
    const FullPipe pipe;
    ASSERT_TRUE(pipe.isFull());
    PipeTransport transport;
    for (int round = 0; round < 2; round++) {  // each attempt gets the full number of tries
        transport.connect();
        int passes = 0;
        EXPECT_EQ(transport.problem(), "");
        while (passes < 1000 && transport.poll(kNowMs) == TransportState::kConnecting) passes++;
        EXPECT_EQ(transport.poll(kNowMs), TransportState::kClosed);
        EXPECT_EQ(transport.problem(), "the simulator takes no more programs");
        EXPECT_GT(passes, 20);
        EXPECT_LT(passes, 25);
    }
}

TEST(SimulatorPipe, ThatWasFullIsTakenInTheFirstPassWithRoom) {
    FullPipe pipe;
    ASSERT_TRUE(pipe.isFull());
    PipeTransport transport;
    transport.connect();
    for (int pass = 0; pass < 10; pass++) ASSERT_EQ(transport.poll(kNowMs), TransportState::kConnecting);
    ASSERT_TRUE(pipe.makeRoom());
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kOpen);
    EXPECT_EQ(transport.problem(), "");
}

TEST(SimulatorPipe, ThatIsNotThereIsNoProblemWorthAWord) {
    PipeTransport transport;
    transport.connect();
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kClosed);
    EXPECT_EQ(transport.problem(), "");
}

TEST(SimulatorPipe, ThatNobodyReadsIsSaidNotToBeRead) {
    const HANDLE server = CreateNamedPipeA(simconnect::kPipeName, PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                           PIPE_TYPE_BYTE, 1, 4096, 4096, 0, nullptr);
    ASSERT_NE(server, INVALID_HANDLE_VALUE);
    PipeTransport transport;
    transport.connect();
    ASSERT_EQ(transport.poll(kNowMs), TransportState::kOpen);
    const std::vector<std::uint8_t> packet(4'000);
    int taken = 0;
    while (taken < 1000 && transport.send(packet)) taken++;
    EXPECT_LT(taken, 1000);
    EXPECT_EQ(transport.poll(kNowMs), TransportState::kOpen);
    EXPECT_EQ(transport.problem(), pilot::kDoesNotRead);
    CloseHandle(server);
    EXPECT_TRUE(waitFor(
        [&] {
            std::uint8_t byte = 0;
            transport.receive({&byte, 1});
            return transport.poll(kNowMs) == TransportState::kClosed;
        },
        kPatienceMs));
}

TEST(SimulatorPipe, ThatIsFullIsShownUntilThereIsRoom) {
    FullPipe pipe;
    ASSERT_TRUE(pipe.isFull());
    simconnect::SimConnectLink link(std::make_unique<PipeTransport>());
    std::uint64_t nowMs = 1000;
    const std::string full = "the simulator takes no more programs";
    for (int pass = 0; pass < 50 && link.snapshot().status != full; pass++) link.poll(nowMs += 20);
    EXPECT_EQ(link.snapshot().status, full);
    EXPECT_FALSE(link.snapshot().ok);
    ASSERT_TRUE(pipe.makeRoom());
    link.poll(nowMs += simconnect::kRetryMs[0] - 1);
    EXPECT_FALSE(pipe.hasVisitor());
    link.poll(nowMs += 1);
    EXPECT_TRUE(waitFor([&] { return pipe.hasVisitor(); }, kPatienceMs));
}
