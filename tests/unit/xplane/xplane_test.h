// xplane_test.h - a test with a stand-in X-Plane and one client of it, which makes its datagrams byte by byte and keeps
// what comes back. The clock is set by hand.
#pragma once
#include <gtest/gtest.h>
#include <array>
#include <bit>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include "tests/xplane/simulator.h"

inline constexpr const char* kCom1Active = "sim/cockpit2/radios/actuators/com1_frequency_hz_833";
inline constexpr const char* kCom1Standby = "sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833";
inline constexpr const char* kCom2Active = "sim/cockpit2/radios/actuators/com2_frequency_hz_833";
inline constexpr const char* kCom2Standby = "sim/cockpit2/radios/actuators/com2_standby_frequency_hz_833";
inline constexpr const char* kCom1Volume = "sim/cockpit2/radios/actuators/audio_volume_com1";
inline constexpr const char* kCom1Power = "sim/cockpit2/radios/actuators/com1_power";
inline constexpr const char* kCom1Flip = "sim/radios/com1_standy_flip";

class XplaneTest : public ::testing::Test {
  protected:
    void begin(const char* personality) {
        ASSERT_NE(xstandin::findPersonality(personality), nullptr);
        simulator =
            std::make_unique<xstandin::Simulator>(*xstandin::findPersonality(personality), 49'003, "simpc", nowMs);
        forget();
    }
    void act(const char* line) {
        xstandin::Action action;
        std::string error;
        ASSERT_TRUE(xstandin::parseAction(line, action, error) && simulator->act(action, nowMs, error))
            << line << ": " << error;
    }

    // The three requests, as clients send them.
    void ask(const char* name, int perSecond, int index) { send(askBytes(name, perSecond, index)); }
    static std::string askBytes(std::string_view name, int perSecond, int index) {
        return filled(std::string("RREF\0", 5) + bytesOf(perSecond) + bytesOf(index) + std::string(name), 413, '\0');
    }
    void write(std::string_view name, float value) {
        send(filled(std::string("DREF\0", 5) + bytesOf(value) + std::string(name) + '\0', 509, ' '));
    }
    void command(std::string_view name) { send(std::string("CMND\0", 5) + std::string(name) + '\0'); }
    void send(const std::string& bytes) { simulator->receive(client, bytes, nowMs); }

    // Time passes in steps of 10 ms.
    void fly(std::uint64_t ms) {
        for (std::uint64_t flown = 0; flown < ms; flown += 10) {
            nowMs += 10;
            simulator->advance(nowMs);
            collect();
        }
    }
    void collect() {
        for (auto& datagram : simulator->takeOutput()) {
            if (datagram.way == xstandin::Way::kBeacon)
                beacons.push_back(datagram.bytes);
            else
                answers.push_back(std::move(datagram));
        }
        for (auto& report : simulator->takeReports()) reports.push_back(report.text);
    }
    void forget() {
        simulator->takeOutput();
        answers.clear();
        beacons.clear();
    }

    // The last value under an index of ours; -1000 if there is none.
    float value(int index) const {
        float last = -1000.0f;
        for (const auto& answer : answers) {
            for (std::size_t at = 5; at + 8 <= answer.bytes.size(); at += 8) {
                if (numberAt<int>(answer.bytes, at) == index) last = numberAt<float>(answer.bytes, at + 4);
            }
        }
        return last;
    }
    bool hasReported(std::string_view part) const {
        for (const auto& report : reports) {
            if (report.find(part) != std::string::npos) return true;
        }
        return false;
    }

    template <class Number>
    static std::string bytesOf(Number number) {
        const auto bytes = std::bit_cast<std::array<char, sizeof(Number)>>(number);  // tests run on little-endian only
        return {bytes.data(), bytes.size()};
    }
    template <class Number>
    static Number numberAt(const std::string& bytes, std::size_t offset) {
        Number number{};
        std::memcpy(&number, bytes.data() + offset, sizeof number);
        return number;
    }
    static std::string filled(std::string bytes, std::size_t size, char with) {
        bytes.resize(size, with);
        return bytes;
    }

    const xstandin::Endpoint client{xstandin::Endpoint{0x7F000001U, 50'123}};
    std::uint64_t nowMs = 50'000;
    std::unique_ptr<xstandin::Simulator> simulator;
    std::vector<xstandin::Datagram> answers;
    std::vector<std::string> beacons;
    std::vector<std::string> reports;
};
