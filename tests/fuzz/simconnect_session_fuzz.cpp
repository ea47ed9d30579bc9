// simconnect_session_fuzz.cpp - a simulator with a will of its own: whole packets that answer what the worker has
// asked, in any order and at any time, with hostile values, refusals, silences and broken connections, and writes in
// between.
#include <algorithm>
#include <cmath>
#include "exchange/frequency_grid.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/unit/worker/simconnect/fake_simulator.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/command_handler.h"
#include "worker/simconnect/simconnect_link.h"

namespace {

constexpr int kMostPasses = 400;
constexpr std::size_t kMostPacketsInOnePass = 150;  // a new connection, everything requested, and a question or two
constexpr double kHardValues[] = {0.0,    1.0,   2.0,   3.0,  -1.0, 118.0, 118.005, 122.8, 136.99, 136.995,
                                  117.99, 100.0, 100.4, 50.0, 0.4,  1e300, -1e300,  1e-9,  127.25, 121.5};

class World {
  public:
    explicit World(FuzzInput input) : input_(input) {}

    void run() {
        for (int i = 0; i < kMostPasses && !input_.isEmpty(); i++) {
            act();
            pass();
        }
    }

  private:
    double value() {
        const auto which = input_.byte();
        return which < 224 ? kHardValues[which % std::size(kHardValues)] : input_.anyDouble();
    }
    // A number out of one of the packets that the worker has sent on this connection; 0 if there are none of that kind.
    std::uint32_t sentNumber(std::uint32_t opcode, std::size_t offset) {
        const auto packets = simulator_.all(opcode);
        const auto which = input_.byte();
        return packets.empty() ? 0 : u32At(packets[packets.size() - 1 - which % packets.size()], offset);
    }
    void sayData(std::uint32_t requestId) {
        FakePacket packet(8);
        packet.u32(requestId).u32(0).u32(0).u32(0).u32(1).u32(1).u32(1);
        switch (input_.below(4)) {
            case 0:
                packet.u32(static_cast<std::uint32_t>(input_.byte()) - 2);
                break;  // -2..253, as whole numbers come
            case 1:
                packet.text(input_.text(input_.below(9)), 0);
                break;  // any bytes, too few among them
            default:
                packet.f64(value());
        }
        simulator_.say(packet);
    }
    void open() {
        const auto name = input_.text(input_.below(40));
        FakePacket packet(2);
        packet.text(name, 256).u32(input_.byte()).u32(input_.byte());
        simulator_.say(packet.text("", 40));
    }
    // What a friendly simulator does: everything that was asked for, once.
    void tellAll() {
        for (const auto& request : simulator_.all(FakeSimulator::kRequest)) {
            if (u32At(request, 28) == 0) continue;
            const auto variable = (u32At(request, 20) - 1) % 6;
            FakePacket packet(8);
            packet.u32(u32At(request, 16)).u32(0).u32(0).u32(0).u32(1).u32(1).u32(1);
            const double cockpit[] = {122.8, 121.5, 1.0, 80.0, 1.0, 0.0};
            const bool isWhole = variable == 2 || variable > 3;
            if (isWhole)
                packet.u32(static_cast<std::uint32_t>(cockpit[variable]));
            else
                packet.f64(cockpit[variable]);
            simulator_.say(packet);
        }
        simulator_.answerQuestion();
    }
    void write() {
        const RadioWrite request{input_.below(2), static_cast<RadioSlot>(input_.below(4)), writtenValue()};
        if (input_.flag() && !handler_.isPending()) return handler_.accept({"1-1", request, 0.0}, nowMs_);
        const auto sent = link_.adjusted(request);
        if (std::isfinite(sent.value)) link_.write(sent, nowMs_);
        if (input_.flag()) link_.noteReadback(sent, input_.flag());
    }
    double writtenValue() {
        switch (input_.below(4)) {
            case 0:
                return input_.byte() / 100.0;
            case 1:
                return 118000.0 + 5.0 * (input_.number() % 3800);
            case 2:
                return link_.snapshot().radios[0].active + 1000.0 * (input_.byte() - 128.0);
            default:
                return value();
        }
    }
    void act() {
        switch (input_.below(20)) {
            case 0:
                nowMs_ += input_.byte() * 1000U;
                break;
            case 1:
                open();
                break;
            case 2:
            case 3:
                sayData(sentNumber(FakeSimulator::kRequest, 16));
                break;
            case 4:
                sayData(input_.number());
                break;
            case 5:
                simulator_.say(
                    FakePacket(15).u32(sentNumber(FakeSimulator::kState, 16)).u32(input_.below(3)).text("", 264));
                break;
            case 6:
                simulator_.simEvent(input_.below(3));
                break;
            case 7:
                simulator_.pauseEvent(input_.flag() ? "Pause" : "Pause_EX1", input_.below(3));
                break;
            case 8:
                simulator_.loadAircraft(std::string(input_.text(input_.below(30))));
                break;
            case 9:
                simulator_.exception(input_.byte(), sentNumber(FakeSimulator::kVariable, 12));
                break;
            case 10: {
                constexpr std::uint32_t kKinds[] = {FakeSimulator::kMap, FakeSimulator::kRequest,
                                                    FakeSimulator::kSubscribe, FakeSimulator::kState,
                                                    FakeSimulator::kKeyEvent};
                const auto kind = kKinds[input_.below(5)];
                simulator_.exception(input_.byte(), sentNumber(kind, 12));
                break;
            }
            case 11:
                simulator_.exception(input_.number(), input_.number());
                break;
            case 12:
                simulator_.quit();
                break;
            case 13:
                simulator_.say(FakePacket(input_.below(20)).text(input_.text(input_.below(64)), 0));
                break;
            case 14: {
                const auto bytes = input_.text(input_.below(32));
                simulator_.say(FakeBytes(bytes.begin(), bytes.end()));
                break;
            }
            case 15:
                tellAll();
                break;
            case 16:
            case 17:
                write();
                break;
            case 18:
                breakSomething();
                break;
            default:
                nowMs_ += input_.byte() * 20U;
        }
    }
    void breakSomething() {
        using simconnect::TransportState;
        constexpr TransportState kStates[] = {TransportState::kClosed, TransportState::kConnecting,
                                              TransportState::kOpen};
        switch (input_.below(4)) {
            case 0:
                transport_->state = kStates[input_.below(3)];
                break;
            case 1:
                transport_->onConnect = kStates[input_.below(3)];
                break;
            case 2:
                transport_->refusesSends = !transport_->refusesSends;
                break;
            default:
                transport_->mostAtOnce = 1U + input_.byte();
        }
        transport_->reason = input_.flag() ? "refused" : "";
    }

    void pass() {
        const auto connects = transport_->connects;
        const auto sentBefore = transport_->sent.size();
        link_.poll(nowMs_ += 20);
        handler_.pass(nowMs_);
        checkSnapshot();
        checkNotes();
        checkSent(connects == transport_->connects ? sentBefore : 0);
    }
    void checkSnapshot() const {
        const auto& sim = link_.snapshot();
        require(!sim.status.empty(), "there is a status");
        require(sim.rangeMinKHz == kBandMinKHz && sim.rangeMaxKHz <= kBandMaxKHz, "the range is the band");
        const auto inBand = [](std::int32_t khz) { return khz == 0 || (khz >= kBandMinKHz && khz <= kBandMaxKHz); };
        for (const auto& radio : sim.radios) {
            require(sim.ok || radio == RadioReading(), "without a link nothing is known");
            require(inBand(radio.active) && inBand(radio.standby), "frequencies are in the band");
            require(radio.spacing >= -1 && radio.spacing <= 1, "the spacing is one of two, or none");
            require(radio.volume == -1.0f || (radio.volume >= 0.0f && radio.volume <= 1.0f), "the volume is 0..1");
            require(!radio.writable[kSlotSwap] || (radio.active > 0 && radio.standby > 0),
                    "a swap has two frequencies");
        }
    }
    void checkNotes() {
        const auto notes = link_.takeNotes();
        require(notes.size() <= 80, "there are few lines for the log");
        for (const auto& note : notes)
            for (const char c : note) require(c >= 0x20 && c < 0x7F, "a line is plain text", note);
    }
    void checkSent(std::size_t first) {
        require(transport_->sent.size() <= first + kMostPacketsInOnePass, "nobody is flooded with requests");
        for (std::size_t i = std::min(first, transport_->sent.size()); i < transport_->sent.size(); i++) {
            const auto& packet = transport_->sent[i];
            require(packet.size() >= 16 && u32At(packet, 0) == packet.size(), "a packet says how long it is");
            const auto number = u32At(packet, 12);
            require(i == 0 || number > u32At(transport_->sent[i - 1], 12), "packets are numbered upwards");
        }
    }

    FuzzInput input_;
    FakeTransport* transport_ = new FakeTransport;  // the link owns it
    FakeSimulator simulator_{*transport_};
    simconnect::SimConnectLink link_{std::unique_ptr<simconnect::Transport>(transport_)};
    ManualClock clock_;
    MemoryLogFile logFile_;
    WorkerLog log_{logFile_, clock_};
    CommandHandler handler_{link_, log_};
    std::uint64_t nowMs_ = 50'000;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    World(FuzzInput(data, size)).run();
    return 0;
}
