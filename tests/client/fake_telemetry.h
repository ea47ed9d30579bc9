// fake_telemetry.h - "telemetry.json" as a worker with a flying aircraft writes it. Portable.
#pragma once
#include <array>
#include <cstdint>
#include <string>

struct FakeRadio {
    std::int32_t activeKhz = 118000;
    std::int32_t standbyKhz = 118000;
    std::int32_t spacing = 1;  // 0 = 25 kHz, 1 = 8.33 kHz
    double volume = 1.0;       // 0..1
    bool writable = true;      // all four slots
};

struct FakeTelemetry {
    bool ok = true;
    int protocol = 2;
    std::int32_t rangeMinKhz = 118000;
    std::int32_t rangeMaxKhz = 136990;
    std::array<FakeRadio, 2> radios;
    std::string ackId;
    bool ackOk = false;
    std::string ackMessage;
};

// The whole file, stamped with unixSeconds.
std::string telemetryText(const FakeTelemetry& telemetry, double unixSeconds);
