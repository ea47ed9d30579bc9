#include "tests/client/circuit/flight_record.h"

namespace {

// A tab or a line end would begin another cell or line.
std::string oneCell(std::string text) {
    for (char& letter : text) {
        if (static_cast<unsigned char>(letter) < ' ') letter = ' ';
    }
    return text;
}

}  // namespace

FlightRecord::FlightRecord(const std::filesystem::path& file) : file_(file, std::ios::binary) {
    file_ << "flight-record 1\n" << std::flush;
}

void FlightRecord::add(std::uint64_t atMs, FlightEvent event, const std::string& what, const std::string& value) {
    const char* name = kFlightEventNames[static_cast<std::size_t>(event)];
    file_ << atMs << '\t' << name << '\t' << oneCell(what) << '\t' << oneCell(value) << '\n' << std::flush;
}
