#include <winsock2.h>
#include <ws2tcpip.h>
// windows.h includes an older winsock unless it comes second.
#include <windows.h>
#include <array>
#include <map>
#include <utility>
#include "tests/simulator/loopback_address.h"

namespace standin {

namespace {

constexpr DWORD kPipeBytes = 65'536;
constexpr DWORD kPatienceMs = 500;  // with a client that does not read

class Handle {
  public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle() {
        if (handle_) CloseHandle(handle_);
    }
    HANDLE get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    HANDLE handle_ = nullptr;
};

Handle makeEvent() {
    return Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

// One instance of the pipe with the call that is under way on it. Not moved: the system writes into it.
class PipeEnd {
  public:
    static std::unique_ptr<PipeEnd> create(const std::string& path, bool isFirst) {
        const DWORD mode = PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | (isFirst ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0);
        Handle pipe(CreateNamedPipeA(path.c_str(), mode, PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT,
                                     PIPE_UNLIMITED_INSTANCES, kPipeBytes, kPipeBytes, 0, nullptr));
        if (!pipe) return nullptr;
        auto end = std::unique_ptr<PipeEnd>(new PipeEnd(std::move(pipe)));
        end->beginConnect();
        return end;
    }
    ~PipeEnd() {
        if (!isPending_) return;
        CancelIoEx(pipe_.get(), &call_);  // whichever thread started it
        DWORD ignored = 0;
        GetOverlappedResult(pipe_.get(), &call_, &ignored, TRUE);
    }

    HANDLE event() const { return event_.get(); }
    bool isSignalled() const { return WaitForSingleObject(event_.get(), 0) == WAIT_OBJECT_0; }
    void beginRead() {
        auto* call = prepare();
        begin(ReadFile(pipe_.get(), bytes_.data(), kPipeBytes, nullptr, call));
    }
    // Ends the call under way; false if the client is gone.
    bool finish(std::string& bytes) {
        DWORD count = 0;
        const bool isGood = hasFailed_ ? false : GetOverlappedResult(pipe_.get(), &call_, &count, TRUE) != 0;
        isPending_ = false;
        bytes.assign(bytes_.data(), isGood ? count : 0);
        return isGood;
    }
    void write(std::string_view bytes) {
        const Handle done = makeEvent();
        OVERLAPPED call = {};
        call.hEvent = done.get();
        DWORD count = 0;
        if (WriteFile(pipe_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &call) ||
            GetLastError() != ERROR_IO_PENDING)
            return;
        if (WaitForSingleObject(done.get(), kPatienceMs) != WAIT_OBJECT_0) CancelIoEx(pipe_.get(), &call);
        GetOverlappedResult(pipe_.get(), &call, &count, TRUE);
    }

  private:
    explicit PipeEnd(Handle pipe) : pipe_(std::move(pipe)), event_(makeEvent()), bytes_(kPipeBytes, '\0') {}

    void beginConnect() {
        auto* call = prepare();
        const BOOL isDone = ConnectNamedPipe(pipe_.get(), call);
        if (!isDone && GetLastError() == ERROR_PIPE_CONNECTED) {  // the client was faster
            SetEvent(event_.get());
            return;
        }
        begin(isDone);
    }
    OVERLAPPED* prepare() {
        ResetEvent(event_.get());
        call_ = {};
        call_.hEvent = event_.get();
        return &call_;
    }
    // A call that fails at once is over: its end is found later like any other.
    void begin(BOOL isDone) {
        hasFailed_ = !isDone && GetLastError() != ERROR_IO_PENDING;
        isPending_ = !hasFailed_;
        if (hasFailed_) SetEvent(event_.get());
    }

    Handle pipe_;
    Handle event_;
    std::string bytes_;
    OVERLAPPED call_ = {};
    bool isPending_ = false;
    bool hasFailed_ = false;
};

class SocketEnd {
  public:
    SocketEnd(SOCKET socket, long events) : socket_(socket), event_(makeEvent()) {
        // Or a program that is started now would keep it open after us, and hold up whoever connects.
        SetHandleInformation(reinterpret_cast<HANDLE>(socket_), HANDLE_FLAG_INHERIT, 0);
        WSAEventSelect(socket_, event_.get(), events);
    }
    ~SocketEnd() { closesocket(socket_); }
    SocketEnd(const SocketEnd&) = delete;
    SocketEnd& operator=(const SocketEnd&) = delete;

    SOCKET get() const { return socket_; }
    HANDLE event() const { return event_.get(); }
    bool takeSignal() const {
        WSANETWORKEVENTS events = {};
        return WSAEnumNetworkEvents(socket_, event_.get(), &events) == 0 && events.lNetworkEvents != 0;
    }

  private:
    SOCKET socket_;
    Handle event_;
};

class WindowsConnections : public Connections {
  public:
    WindowsConnections() : wake_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
    }
    ~WindowsConnections() override {
        sockets_.clear();
        listener_.reset();
        WSACleanup();
    }

    std::uint16_t listenTcp(std::uint16_t port, Loopback loopback) override {
        LoopbackAddress address(port, loopback);
        auto listener = std::make_unique<SocketEnd>(socket(address.family(), SOCK_STREAM, IPPROTO_TCP), FD_ACCEPT);
        socklen_t length = address.length();
        // If the port was in use before, old connections may still be ending.
        const BOOL on = TRUE;
        setsockopt(listener->get(), SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&on), sizeof on);
        if (bind(listener->get(), address.general(), length) != 0 || listen(listener->get(), 16) != 0) return 0;
        if (getsockname(listener->get(), address.general(), &length) != 0) return 0;
        listener_ = std::move(listener);
        loopback_ = loopback;
        return port_ = address.port();
    }

    bool listenPipe(const std::string& name) override {
        pipePath_ = "\\\\.\\pipe\\" + name;
        nextPipe_ = PipeEnd::create(pipePath_, true);
        if (!nextPipe_) pipePath_.clear();
        return nextPipe_ != nullptr;
    }

    void setReachable(bool reachable) override {
        if (reachable == isReachable_) return;
        isReachable_ = reachable;
        listener_.reset();
        nextPipe_.reset();
        if (!reachable) return;
        if (port_ != 0) listenTcp(port_, loopback_);
        if (!pipePath_.empty()) nextPipe_ = PipeEnd::create(pipePath_, false);
    }

    std::vector<ConnectionEvent> wait(std::uint64_t timeoutMs) override {
        std::vector<HANDLE> handles = {wake_.get()};
        if (listener_) handles.push_back(listener_->event());
        if (nextPipe_) handles.push_back(nextPipe_->event());
        for (const auto& [number, end] : sockets_) handles.push_back(end->event());
        for (const auto& [number, end] : pipes_) handles.push_back(end->event());
        if (handles.size() > MAXIMUM_WAIT_OBJECTS) handles.resize(MAXIMUM_WAIT_OBJECTS);
        WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE,
                               static_cast<DWORD>(timeoutMs));
        std::vector<ConnectionEvent> events;
        readSockets(events);
        readPipes(events);
        acceptSockets(events);
        acceptPipe(events);
        return events;
    }

    void wake() override { SetEvent(wake_.get()); }

    void send(int connection, std::string_view bytes) override {
        if (bytes.empty()) return;
        const auto pipe = pipes_.find(connection);
        if (pipe != pipes_.end()) return pipe->second->write(bytes);
        const auto socket = sockets_.find(connection);
        while (socket != sockets_.end() && !bytes.empty()) {
            const int sent = ::send(socket->second->get(), bytes.data(), static_cast<int>(bytes.size()), 0);
            if (sent > 0) {
                bytes.remove_prefix(static_cast<std::size_t>(sent));
                continue;
            }
            WSAPOLLFD room = {socket->second->get(), POLLOUT, 0};
            if (WSAGetLastError() != WSAEWOULDBLOCK || WSAPoll(&room, 1, kPatienceMs) <= 0) return;
        }
    }

    void close(int connection) override {
        pipes_.erase(connection);
        sockets_.erase(connection);
    }

  private:
    using Kind = ConnectionEvent::Kind;

    void acceptSockets(std::vector<ConnectionEvent>& events) {
        if (!listener_) return;
        listener_->takeSignal();
        while (true) {
            const SOCKET accepted = accept(listener_->get(), nullptr, nullptr);
            if (accepted == INVALID_SOCKET) return;
            const BOOL on = TRUE;
            setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
            sockets_[++last_] = std::make_unique<SocketEnd>(accepted, FD_READ | FD_CLOSE);
            events.push_back({Kind::kOpened, last_, ""});
        }
    }

    void acceptPipe(std::vector<ConnectionEvent>& events) {
        if (!nextPipe_ || !nextPipe_->isSignalled()) return;
        std::string none;
        auto end = std::exchange(nextPipe_, PipeEnd::create(pipePath_, false));
        // A client that connected and left at once shows in the first read.
        end->finish(none);
        end->beginRead();
        pipes_[++last_] = std::move(end);
        events.push_back({Kind::kOpened, last_, ""});
    }

    void readPipes(std::vector<ConnectionEvent>& events) {
        for (auto entry = pipes_.begin(); entry != pipes_.end();) {
            auto& [number, end] = *entry;
            std::string bytes;
            bool isThere = true;
            if (end->isSignalled()) {
                isThere = end->finish(bytes);
                events.push_back({isThere ? Kind::kReceived : Kind::kClosed, number, std::move(bytes)});
                if (isThere) end->beginRead();
            }
            entry = isThere ? std::next(entry) : pipes_.erase(entry);
        }
    }

    void readSockets(std::vector<ConnectionEvent>& events) {
        for (auto entry = sockets_.begin(); entry != sockets_.end();) {
            const auto& [number, end] = *entry;
            int count = -1;
            int error = WSAEWOULDBLOCK;
            if (end->takeSignal()) {
                count = recv(end->get(), buffer_.data(), static_cast<int>(buffer_.size()), 0);
                error = count < 0 ? WSAGetLastError() : 0;
            }
            if (count > 0)
                events.push_back({Kind::kReceived, number, {buffer_.data(), static_cast<std::size_t>(count)}});
            const bool isGone = count == 0 || (count < 0 && error != WSAEWOULDBLOCK);
            if (isGone) events.push_back({Kind::kClosed, number, ""});
            entry = isGone ? sockets_.erase(entry) : std::next(entry);
        }
    }

    Handle wake_;
    std::unique_ptr<SocketEnd> listener_;
    std::uint16_t port_ = 0;
    Loopback loopback_ = Loopback::kIPv4;
    std::string pipePath_;               // empty: no pipe
    std::unique_ptr<PipeEnd> nextPipe_;  // waits for the next client
    bool isReachable_ = true;
    std::map<int, std::unique_ptr<SocketEnd>> sockets_;
    std::map<int, std::unique_ptr<PipeEnd>> pipes_;
    int last_ = 0;
    std::array<char, 65'536> buffer_{};
};

}  // namespace

std::unique_ptr<Connections> makeConnections() {
    return std::make_unique<WindowsConnections>();
}

}  // namespace standin
