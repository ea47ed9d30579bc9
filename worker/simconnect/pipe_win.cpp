#include "worker/simconnect/pipe_win.h"
#include <algorithm>
#include <cstring>
#include "worker/pilot_texts.h"

namespace simconnect {

namespace {

// One a pass: half a second where the worker takes one every 23 ms, and five where it rests for 200 ms in between.
constexpr int kMaxBusyTries = 25;

bool isGone(DWORD error) {
    return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
}

}  // namespace

PipeTransport::PipeTransport() : readEvent_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

PipeTransport::~PipeTransport() {
    PipeTransport::close();
}

void PipeTransport::connect() {
    close();
    problem_.clear();
    busyTries_ = 0;
    state_ = TransportState::kConnecting;
    tryOpen();
}

// Whoever made the pipe may learn who we are, but not act in our name.
void PipeTransport::tryOpen() {
    pipe_ = CreateFileA(kPipeName, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
    if (pipe_ != INVALID_HANDLE_VALUE) {
        state_ = TransportState::kOpen;
        return beginRead();
    }
    const DWORD error = GetLastError();
    if (error == ERROR_PIPE_BUSY && ++busyTries_ < kMaxBusyTries) return;  // the next pass tries again
    state_ = TransportState::kClosed;
    if (error == ERROR_PIPE_BUSY) problem_ = pilot::kTakesNoMore;
    if (error == ERROR_ACCESS_DENIED) problem_ = pilot::kRefusesUser;
    if (!problem_.empty() || error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return;
    problem_ = pilot::notReachableText(error);
}

void PipeTransport::close() {
    if (pipe_ != INVALID_HANDLE_VALUE) {
        CancelIoEx(pipe_, nullptr);
        DWORD count = 0;
        if (reading_) GetOverlappedResult(pipe_, &read_, &count, TRUE);
        for (auto& write : writes_) GetOverlappedResult(pipe_, &write.overlapped, &count, TRUE);
        CloseHandle(pipe_);
    }
    pipe_ = INVALID_HANDLE_VALUE;
    reading_ = false;
    writes_.clear();
    unsentBytes_ = 0;
    filled_ = taken_ = 0;
    state_ = TransportState::kClosed;
}

TransportState PipeTransport::poll(std::uint64_t) {
    if (state_ == TransportState::kConnecting) tryOpen();
    if (state_ == TransportState::kOpen) dropFinishedWrites();
    return state_;
}

void PipeTransport::beginRead() {
    read_ = {};
    read_.hEvent = readEvent_.get();
    filled_ = taken_ = 0;
    const bool done = ReadFile(pipe_, buffer_.data(), static_cast<DWORD>(buffer_.size()), nullptr, &read_) != 0;
    const DWORD error = done ? ERROR_SUCCESS : GetLastError();
    // A message that is longer than the buffer comes in pieces, and its beginning is there already.
    reading_ = done || error == ERROR_IO_PENDING || error == ERROR_MORE_DATA;
    if (!reading_) end(error);
}

void PipeTransport::finishRead() {
    if (!HasOverlappedIoCompleted(&read_)) return;
    DWORD count = 0;
    const bool done = GetOverlappedResult(pipe_, &read_, &count, FALSE) != 0;
    const DWORD error = done ? ERROR_SUCCESS : GetLastError();
    if (error == ERROR_IO_INCOMPLETE) return;
    reading_ = false;
    if (done || error == ERROR_MORE_DATA) {
        filled_ = count;
    } else {
        end(error);
    }
}

std::size_t PipeTransport::receive(std::span<std::uint8_t> into) {
    if (state_ != TransportState::kOpen) return 0;
    if (reading_) finishRead();
    if (state_ != TransportState::kOpen || reading_) return 0;
    const auto count = std::min(into.size(), filled_ - taken_);
    std::memcpy(into.data(), buffer_.data() + taken_, count);
    taken_ += count;
    if (taken_ == filled_) beginRead();
    return count;
}

// A write that fails ends at once; the end of the connection shows in the read, after the simulator's last words.
bool PipeTransport::send(std::span<const std::uint8_t> packet) {
    dropFinishedWrites();
    if (state_ != TransportState::kOpen) return false;
    if (unsentBytes_ + packet.size() > kMaxUnsentBytes) {
        problem_ = pilot::kDoesNotRead;
        return false;
    }
    auto& write = writes_.emplace_back();
    write.bytes.assign(packet.begin(), packet.end());
    write.event.reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    write.overlapped.hEvent = write.event.get();
    unsentBytes_ += packet.size();
    const auto length = static_cast<DWORD>(write.bytes.size());
    const bool done = WriteFile(pipe_, write.bytes.data(), length, nullptr, &write.overlapped) != 0;
    if (done || GetLastError() == ERROR_IO_PENDING) return true;
    unsentBytes_ -= packet.size();
    writes_.pop_back();
    return false;
}

void PipeTransport::dropFinishedWrites() {
    while (!writes_.empty() && HasOverlappedIoCompleted(&writes_.front().overlapped)) {
        unsentBytes_ -= writes_.front().bytes.size();
        writes_.pop_front();
    }
}

void PipeTransport::end(DWORD error) {
    close();
    problem_ = isGone(error) ? "" : pilot::readingFailedText(error);
}

void* PipeTransport::wakeHandle() const {
    return state_ == TransportState::kOpen ? readEvent_.get() : nullptr;
}

}  // namespace simconnect
