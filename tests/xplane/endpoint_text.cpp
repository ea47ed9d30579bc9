#include <charconv>
#include <cstring>
#include "tests/xplane/sockets.h"

namespace xstandin {

bool parseEndpoint(const char* text, Endpoint& endpoint) {
    const char* end = text + std::strlen(text);
    Endpoint read;
    for (int part = 0; part < 4; part++) {
        std::uint8_t byte = 0;
        const auto [stop, error] = std::from_chars(text, end, byte);
        if (error != std::errc{} || stop == end || *stop != (part < 3 ? '.' : ':')) return false;
        read.address = read.address << 8U | byte;
        text = stop + 1;
    }
    const auto [stop, error] = std::from_chars(text, end, read.port);
    if (error != std::errc{} || stop != end) return false;
    endpoint = read;
    return true;
}

}  // namespace xstandin
