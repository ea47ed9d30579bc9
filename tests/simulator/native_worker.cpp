// native_worker.cpp - the worker's own loop, link and files on this machine, for checks without Windows. Ends when its
// standard input ends.
//   native_worker DATA_FOLDER HOST:PORT [xplane]
#include <poll.h>
#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string_view>
#include "worker/simconnect/simconnect_link.h"
#include "worker/simconnect/tcp_transport.h"
#include "worker/worker_loop.h"
#include "worker/xplane/udp_datagrams.h"
#include "worker/xplane/xplane_link.h"

namespace {

// The worker joins its paths as Windows does.
std::filesystem::path toPath(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

// Each call either works or fails for good: nobody else looks at these files.
class NativeFiles : public DataFiles {
  protected:
    FileResult readOnce(const std::string& path, std::size_t maxBytes, std::string& bytes) override {
        bytes.clear();
        std::ifstream stream(toPath(path), std::ios::binary);
        if (!stream) return {FileState::kMissing};
        std::ostringstream text;
        text << stream.rdbuf();
        bytes = text.str().substr(0, maxBytes);
        return {};
    }
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool /*isFlushed*/) override {
        std::ofstream stream(toPath(path), std::ios::binary | std::ios::trunc);
        stream << bytes;
        stream.close();
        return {stream.good() ? FileState::kDone : FileState::kFailed};
    }
    FileResult moveOnce(const std::string& from, const std::string& to, bool /*isReplacing*/) override {
        std::error_code error;
        std::filesystem::rename(toPath(from), toPath(to), error);
        return {error ? FileState::kFailed : FileState::kDone, static_cast<std::uint32_t>(error.value())};
    }
    void remove(const std::string& path) override {
        std::error_code error;
        std::filesystem::remove(toPath(path), error);
    }
    std::uint32_t pause(std::uint32_t ms) override {
        ::poll(nullptr, 0, static_cast<int>(ms));
        return ms;
    }
    std::uint32_t processId() const override { return static_cast<std::uint32_t>(::getpid()); }
};

class NativeFolder : public WorkerFolder {
  public:
    bool isGone(const std::string& path) override { return !std::filesystem::is_directory(toPath(path)); }
    FileStamp stamp(const std::string& path) override {
        std::error_code error;
        const auto file = toPath(path);
        if (!std::filesystem::is_regular_file(file, error)) return {};
        const auto written = std::filesystem::last_write_time(file, error).time_since_epoch().count();
        const auto bytes = std::filesystem::file_size(file, error);
        return {!error, bytes, static_cast<std::uint64_t>(written)};
    }
};

class NativeClock : public Clock {
  public:
    std::uint64_t tickMs() const override {
        return static_cast<std::uint64_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
                .count());
    }
    double unixSeconds() const override {
        return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    }
};

class PrintedLog : public LogFile {
  public:
    std::uint64_t bytes() override { return 0; }
    bool append(std::string_view line) override {
        std::fwrite(line.data(), 1, line.size(), stderr);
        return true;
    }
    bool rotate() override { return true; }
};

std::unique_ptr<SimLink> makeNativeLink(const HostPort& address, bool isXplane) {
    if (isXplane) return std::make_unique<xplane::XPlaneLink>(std::make_unique<xplane::UdpDatagrams>(), address);
    return std::make_unique<simconnect::SimConnectLink>(std::make_unique<simconnect::TcpTransport>(address));
}

}  // namespace

int main(int argc, char** argv) {
    const auto address = argc == 3 || argc == 4 ? parseHostPort(argv[2]) : std::nullopt;
    const bool isXplane = argc == 4 && std::string_view(argv[3]) == "xplane";
    if (!address || (argc == 4 && !isXplane)) {
        std::fprintf(stderr, "usage: native_worker DATA_FOLDER HOST:PORT [xplane]\n");
        return 2;
    }
    NativeFiles files;
    NativeFolder folder;
    const NativeClock clock;
    PrintedLog file;
    WorkerLog log(file, clock);
    const auto link = makeNativeLink(*address, isXplane);
    WorkerLoop loop(argv[1], files, folder, *link, log);
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    while (true) {
        const auto result = loop.pass(clock.tickMs(), clock.unixSeconds());
        if (result.folderGone) return 0;
        char ignored[256];
        if (::poll(&input, 1, static_cast<int>(result.waitMs)) > 0 &&
            ::read(STDIN_FILENO, ignored, sizeof ignored) <= 0)
            return 0;
    }
}
