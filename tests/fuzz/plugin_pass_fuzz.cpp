// plugin_pass_fuzz.cpp - the plugin between a hostile worker and a hostile server: telemetry, capture_mode.txt, channel
// names, answers and events of any kind, the panel operated at random. What it writes can be read, it breaks no rule of
// the host, and what it shows is fit to be drawn.
#include "exchange/command_text.h"
#include "exchange/support_files.h"
#include "panel/panel_picture.h"
#include "plugin/host_events.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/unit/bridge/rig.h"

namespace {

constexpr int kMostPasses = 200;
constexpr const char* kHardJson[] = {"0",    "-1",   "118000", "136990", "2147483647", "-2147483648", "1e300", "0.5",
                                     "true", "null", "\"\"",   "2",      "122801",     "999999",      "nan",   "1"};

class NoActions final : public PanelActions {
  public:
    void openSettings() override {}
    void toggleTextWindow() override {}
};

class World {
  public:
    explicit World(FuzzInput input) : input_(input) {}

    void run() {
        for (int i = 0; i < kMostPasses && !input_.isEmpty(); i++) {
            act();
            rig_.pass();
            checkState();
            checkFiles();
            checkPicture();
        }
        require(rig_.host.problems().empty(), "no rule of the host is broken");
        require(rig_.host.leaks().empty(), "what the host hands out is given back");
    }

  private:
    std::uint64_t nowMs() const { return rig_.clock.tickMs(); }

    // One key with another value, or any bytes in place of the whole file.
    void changeTelemetry() {
        if (rig_.telemetry.fields().empty()) rig_.telemetry = {};  // all were dropped
        const auto& fields = rig_.telemetry.fields();
        const auto key = fields[input_.byte() % fields.size()].first;
        switch (input_.below(8)) {
            case 0:
                rig_.telemetry.drop(key);
                break;
            case 1:
                rig_.telemetry.set(key, '"' + std::string(input_.text(input_.below(64))) + '"');
                break;
            case 2:
                rig_.telemetry.set(key, std::string(input_.text(input_.below(16))));
                break;
            case 3:
                rig_.telemetry.set(key, std::to_string(static_cast<std::int32_t>(input_.number())));
                break;
            case 4:
                rig_.telemetry.set("ack_id", '"' + lastCommandId() + '"');
                break;
            case 5:
                rig_.telemetry = {};
                break;
            default:
                rig_.telemetry.set(key, kHardJson[input_.below(std::size(kHardJson))]);
        }
    }
    std::string lastCommandId() {
        const auto command = parseCommandText(rig_.files.text(pathOf(kCommandFile)));
        return command ? command->id : "";
    }
    void changeServer() {
        const std::uint64_t channel = 11U + input_.below(4);
        switch (input_.below(8)) {
            case 0:
                rig_.host.removeChannel(1, channel);
                rig_.host.addChannel(1, {channel, std::string(input_.text(input_.below(40)))});
                break;
            case 1:
                rig_.host.setMoveRule(
                    {static_cast<MoveAnswer>(input_.below(4)), input_.byte(), input_.number(), input_.flag()});
                break;
            case 2:
                rig_.host.setNullChannelList(input_.flag());
                break;
            case 3:
                rig_.host.moveByHand(1, 5, input_.flag() ? channel : 0);
                break;
            case 4:
                connectStatusChanged(rig_.server, rig_.talk, rig_.functions, input_.below(3),
                                     static_cast<int>(input_.below(6)), nowMs());
                break;
            case 5:
                serverConnectionChanged(rig_.server, rig_.talk, input_.below(3), nowMs());
                break;
            case 6:
                rig_.host.failFunction(kFailing[input_.below(std::size(kFailing))], input_.below(3));
                break;
            default:
                talk();
        }
    }
    void talk() {
        const auto client = static_cast<std::uint16_t>(input_.below(4) + 4);
        if (input_.below(4) == 0) return clientMoved(rig_.talk, 1, client, input_.below(2), nowMs());
        if (input_.flag()) return rig_.host.setOwnTalkingFlag(1, input_.flag());
        talkChanged(rig_.talk, input_.below(3), client, input_.flag(), nowMs());
    }
    void operatePanel() {
        const PanelContext context{rig_.settings, rig_.radios, actions_};
        const PixelPoint at{static_cast<std::int32_t>(input_.byte()) * 4, static_cast<std::int32_t>(input_.byte()) * 2};
        switch (input_.below(6)) {
            case 0:
                pressPanel(model_, context, at, nowMs());
                break;
            case 1:
                movePanel(model_, context, at, nowMs());
                break;
            case 2:
                releasePanel(model_, context, at, nowMs());
                break;
            case 3:
                wheelPanel(model_, context, at, static_cast<std::int32_t>(input_.number()), nowMs());
                break;
            case 4:
                tune_step(context, static_cast<std::int32_t>(input_.below(4)),
                          static_cast<std::int32_t>(input_.below(5)), static_cast<std::int32_t>(input_.number()),
                          input_.flag(), nowMs());
                break;
            default:
                clickElement(context, static_cast<std::int32_t>(input_.below(20)) - 2, nowMs());
        }
        tickPanel(model_);
    }
    void changeSettings() {
        updateSettings(rig_.settings, [&](Settings& live) {
            live.radio = static_cast<std::int32_t>(1 + input_.below(2));
            live.target = static_cast<std::int32_t>(input_.below(2));
            live.theme = static_cast<std::int32_t>(input_.below(3));
            live.enabled = input_.below(4) != 0;
            live.master = input_.below(4) != 0;
            live.follow_volume = input_.flag();
        });
    }
    void act() {
        switch (input_.below(8)) {
            case 0:
            case 1:
            case 2:
                changeTelemetry();
                break;
            case 3:
                changeServer();
                break;
            case 4:
                operatePanel();
                break;
            case 5:
                rig_.clock.advance(input_.byte() * 20U);
                break;
            case 6:
                if (input_.below(3) == 0) changeSettings();
                if (input_.below(3) == 0) rig_.files.put(pathOf(kCaptureModeFile), input_.text(input_.below(20)));
                if (input_.below(3) == 0) rig_.files.readOnly = !rig_.files.readOnly;
                rig_.worker = {static_cast<WorkerLife::State>(input_.below(8) % 3), input_.number(),
                               input_.below(8) == 0};
                break;
            default:
                rig_.workerAlive = input_.flag();
                if (!rig_.workerAlive) rig_.files.put(pathOf(kTelemetryFile), input_.text());
        }
    }

    void checkState() {
        require(rig_.voice.ReceiveGain >= 0.0f && rig_.voice.ReceiveGain < 2.0f, "the receive gain is sane");
        require(rig_.voice.CaptureMode >= 0 && rig_.voice.CaptureMode <= 2, "the capture mode is one of three");
        require(commandsOf(rig_.commands).size() <= kMaxCommands, "the queue is short");
        const auto state = copySimState(rig_.sim);
        for (const auto& radio : state.radios)
            require(state.connected || (radio.active == 0 && radio.volume == -1.0f), "disconnected, nothing is known");
        const auto status = copyStatus(rig_.radios.status);
        require(status.statusText.size() <= 600 && status.channelStatus.size() <= 600, "the lines are short");
        require(state.connected || status.statusText.find(kConnectedText) != 0, "disconnected, the line says so");
    }
    void checkFiles() {
        const auto command = rig_.files.text(pathOf(kCommandFile));
        require(command.empty() || parseCommandText(command).has_value(), "the worker can read the command", command);
        const auto state = rig_.files.text(pathOf(kLinkStateFile));
        const bool isKnown = state.empty() || state == "CONNECTED\r\n" || state.starts_with(kDisconnectedText);
        require(isKnown && state.size() <= 300, "link_state.txt says how it is", state);
    }
    void checkPicture() const {
        PanelInputs inputs;
        inputs.settings = copySettings(rig_.settings);
        inputs.sim = copySimState(rig_.sim);
        inputs.commands = copyCommands(rig_.commands);
        inputs.status = copyStatus(rig_.radios.status);
        inputs.nowMs = nowMs();
        const auto picture = makePicture(inputs, model_, placePanel(inputs.settings, {0, 0, 1920, 1080}, 96));
        for (const auto& frequency : picture.frequencies)
            require(frequencyDigits(frequency).size() == 6, "a frequency has six digits", frequencyDigits(frequency));
        require(picture.volumePercent >= 0.0f && picture.volumePercent <= 100.0f, "the knob stays on its scale");
    }

    static constexpr HostPosition kFailing[] = {kGetClientIdPosition,       kGetChannelOfClientPosition,
                                                kGetChannelListPosition,    kGetChannelVariableAsStringPosition,
                                                kRequestClientMovePosition, kGetClientSelfVariableAsIntPosition};

    FuzzInput input_;
    mutable PollRig rig_;
    NoActions actions_;
    PanelModel model_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    World(FuzzInput(data, size)).run();
    return 0;
}
