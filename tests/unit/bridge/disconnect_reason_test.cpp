// disconnect_reason_test.cpp - which reason counts, and its words.
#include "bridge/disconnect_reason.h"
#include <gtest/gtest.h>
#include "exchange/telemetry_text.h"

namespace {

using State = WorkerLife::State;

// What a worker has written just now that has no simulator.
TelemetryReading groundedReading(const std::string& status) {
    TelemetryReading reading;
    reading.telemetry.protocol = kTelemetryProtocol;
    reading.telemetry.status = status;
    reading.timely = true;
    return reading;
}

TelemetryReading staleReading() {
    TelemetryReading reading = groundedReading("flying");
    reading.telemetry.ok = true;
    reading.timely = false;
    return reading;
}

std::string lineOf(const WorkerLife& worker, const std::optional<TelemetryReading>& reading) {
    return disconnectedText(reasonOf(worker, reading));
}

}  // namespace

TEST(DisconnectReason, TellsEveryCauseApart) {
    const WorkerLife running;
    TelemetryReading other = groundedReading("flying");
    other.telemetry.protocol = 3.0;
    const struct {
        WorkerLife worker;
        std::optional<TelemetryReading> reading;
        const char* line;
    } rows[] = {
        {{State::kNotStarted, 2, true}, std::nullopt, "DISCONNECTED: worker program missing"},
        {{State::kEnded, 2, true}, std::nullopt, "DISCONNECTED: worker program missing"},  // Python without a script
        {{State::kNotStarted, 193, false}, std::nullopt, "DISCONNECTED: worker not started (error 193)"},
        {{State::kEnded, 0, false}, std::nullopt, "DISCONNECTED: worker not running (code 0)"},
        {{State::kEnded, 3, false}, staleReading(), "DISCONNECTED: worker not running (code 3)"},
        {{State::kEnded, 0xC0000005, false}, std::nullopt, "DISCONNECTED: worker not running (code 0xC0000005)"},
        {running, std::nullopt, "DISCONNECTED: waiting for the worker"},
        {running, staleReading(), "DISCONNECTED: waiting for the worker"},
        {running, groundedReading(""), "DISCONNECTED: waiting for the worker"},
        {running, other, "DISCONNECTED: worker of another version"},
        {running, groundedReading("waiting for the simulator"), "DISCONNECTED: waiting for the simulator"},
        {running, groundedReading("simulator in menu"), "DISCONNECTED: simulator in menu"},
        {running, groundedReading("no answer from simpc"), "DISCONNECTED: no answer from simpc"},
        {running, groundedReading("the simulator sends no data"), "DISCONNECTED: the simulator sends no data"},
        {running, groundedReading("simulator link lost"), "DISCONNECTED: simulator link lost"},
    };
    for (const auto& row : rows) EXPECT_EQ(lineOf(row.worker, row.reading), row.line);
}

TEST(DisconnectReason, AWorkerThatIsGoneCountsBeforeWhatItWroteASecondAgo) {
    const auto reading = groundedReading("simulator in menu");
    EXPECT_EQ(lineOf({State::kEnded, 9, false}, reading), "DISCONNECTED: worker not running (code 9)");
    EXPECT_EQ(lineOf({State::kNotStarted, 5, false}, reading), "DISCONNECTED: worker not started (error 5)");
}

TEST(DisconnectReason, AFreshReadingHasNoneWhoeverWroteIt) {
    TelemetryReading reading = groundedReading("flying");
    reading.telemetry.ok = reading.fresh = true;
    for (const State state : {State::kRunning, State::kNotStarted, State::kEnded}) {
        EXPECT_EQ(reasonOf({state, 1, true}, reading), DisconnectReason{});
        EXPECT_EQ(reasonText(reasonOf({state, 1, true}, reading)), "");
        EXPECT_EQ(lineOf({state, 1, true}, reading), "DISCONNECTED");
    }
}

TEST(DisconnectReason, HasAtMost44BytesOnOneLineAndNoHalfCharacter) {
    const auto textOf = [](const std::string& status) { return reasonText(reasonOf({}, groundedReading(status))); };
    EXPECT_EQ(textOf(std::string(256, 'a')), std::string(44, 'a'));
    EXPECT_EQ(textOf(std::string(43, 'a') + "\xc3\xa4"), std::string(43, 'a'));
    EXPECT_EQ(textOf("one\r\ntwo\t\x7f"), "one  two  ");
    for (const State state : {State::kNotStarted, State::kEnded})
        for (const std::uint32_t code : {0xFFFFU, 0x10000U, 0xFFFFFFFFU})
            EXPECT_LE(reasonText(reasonOf({state, code, false}, std::nullopt)).size(), 44U);
    EXPECT_EQ(lineOf({State::kEnded, 0xFFFF, false}, std::nullopt), "DISCONNECTED: worker not running (code 65535)");
    EXPECT_EQ(lineOf({State::kEnded, 0x10000, false}, std::nullopt),
              "DISCONNECTED: worker not running (code 0x00010000)");
}
