#include "bridge/telemetry_file.h"

std::optional<TelemetryReading> readTelemetry(DataFiles& files, const std::string& dataFolder, const Clock& clock) {
    std::string text;
    const std::string path = joinPath(dataFolder, kTelemetryFile);
    if (!files.readBeginning(path, kMaxTelemetryFileBytes, text) || text.empty()) return std::nullopt;
    TelemetryReading reading;
    reading.readTickMs = clock.tickMs();
    reading.telemetry = parseTelemetry(text);
    // The clock is read after the file: a file written between the two must not seem to come from the future.
    const double nowUnixSeconds = clock.unixSeconds();
    reading.timely = isTimely(reading.telemetry, nowUnixSeconds);
    reading.fresh = isFresh(reading.telemetry, nowUnixSeconds);
    return reading;
}

SelectedRadio selectRadio(const Settings& settings, const TelemetryReading& reading) {
    if (!reading.fresh) return {};
    const RadioReading& radio = reading.telemetry.radios[settings.radio == 2 ? 1 : 0];
    return {settings.target == 0 ? radio.active : radio.standby, radio.volume};
}
