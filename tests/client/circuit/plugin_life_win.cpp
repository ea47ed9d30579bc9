#include "tests/client/circuit/plugin_life_win.h"
#include <array>
#include <cstdio>
#include "panel/panel_requests.h"
#include "tests/client/circuit/flight_plan.h"
#include "tests/client/dialog_driver_win.h"
#include "tests/client/fake_telemetry.h"
#include "tests/client/message_driver_win.h"
#include "tests/client/panel_driver_win.h"

namespace {

constexpr int kLongerThanAPassMs = 60;
constexpr int kStuckExit = 4;
constexpr const wchar_t* kWorkerName = L"hopline_worker.exe";
constexpr const char* kWorkerNames[kWorkerBesideCount] = {"flying", "silent", "none"};
constexpr std::int32_t kFrequencies[] = {127850, 121600, 121900, 118275, 124350, 131500, 122800};

// Stops all threads of a process, as a hang would.
void suspendProcess(std::uint32_t processId) {
    using Suspend = LONG(NTAPI*)(HANDLE);
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtSuspendProcess");
    const HANDLE process = OpenProcess(PROCESS_SUSPEND_RESUME, FALSE, processId);
    if (address && process) reinterpret_cast<Suspend>(reinterpret_cast<void*>(address))(process);
    if (process) CloseHandle(process);
}

void post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window) PostMessageW(window, message, wParam, lParam);
}

}  // namespace

LifePlaces::LifePlaces() : folder_(L"corvalis lives"), appData_(L"APPDATA", (folder_.path / "Roaming").wstring()) {
    std::error_code error;
    std::filesystem::create_directories(dataFolder(), error);
    isGood_ = writeFile(dataFolder() / "worker.ini", "link=simulate\r\n");
    const auto copy = [this](const std::filesystem::path& from, const std::filesystem::path& to) {
        std::error_code failure;
        isGood_ = std::filesystem::copy_file(from, to, failure) && isGood_;
    };
    for (int i = 0; i < kWorkerBesideCount; i++) {
        const auto worker = static_cast<WorkerBeside>(i);
        std::filesystem::create_directories(dll(worker).parent_path(), error);
        copy(productFile("corvalis_win64.dll"), dll(worker));
    }
    copy(productFile("hopline_worker.exe"), dll(WorkerBeside::kFlying).parent_path() / kWorkerName);
    copy(programFolder() / "fake_worker.exe", dll(WorkerBeside::kSilent).parent_path() / kWorkerName);
}

std::filesystem::path LifePlaces::dll(WorkerBeside worker) const {
    return folder_.path / kWorkerNames[static_cast<int>(worker)] / "corvalis_win64.dll";
}

const PluginLife::Deed PluginLife::kDeeds[] = {
    {"telemetry", &PluginLife::writeTelemetry},
    {"voices", &PluginLife::playVoices},
    {"talk", &PluginLife::talk},
    {"texts", &PluginLife::receiveTexts},
    {"menu", &PluginLife::chooseMenu},
    {"message window", &PluginLife::toggleMessages},
    {"hold message window", &PluginLife::holdMessages},
    {"turn pages", &PluginLife::turnMessages},
    {"hold panel", &PluginLife::holdPanel},
    {"knob", &PluginLife::turnKnob},
    {"key", &PluginLife::pressKey},
    {"swap", &PluginLife::swapFrequencies},
    {"dialog", &PluginLife::openDialog},
    {"dialog on host thread", &PluginLife::openDialogOnHostThread},
    {"work dialog", &PluginLife::workDialog},
    {"hold dialog", &PluginLife::holdDialog},
    {"let go", &PluginLife::letGo},
    {"hang worker", &PluginLife::hangWorker},
    {"kill worker", &PluginLife::killWorker},
    {"second init", &PluginLife::startAgain},
    {"tab", &PluginLife::changeTab},
    {"lock settings", &PluginLife::lockSettings},
    {"client to front", &PluginLife::comeToFront},
};

PluginLife::PluginLife(Chance& chance, HostCrowd& crowd, const LifePlaces& places)
    : chance_(chance), crowd_(crowd), places_(places) {
    layOutServer(host_);
}

PluginLife::~PluginLife() {
    if (hostThread_.joinable()) hostThread_.join();
}

bool PluginLife::load() {
    worker_ = static_cast<WorkerBeside>(chance_.below(kWorkerBesideCount));
    tell(std::string("load ") + kWorkerNames[static_cast<int>(worker_)]);
    writeSettings();
    if (plugin_.load(places_.dll(worker_)) && ownMemory_.emplace().isCounting() && plugin_.introduce(host_)) {
        plugin_.exports().registerPluginID("lives");
        return true;
    }
    tell(plugin_.error());
    return false;
}

void PluginLife::writeSettings() {
    theme_ = chance_.below(kThemeCount);
    std::string text = "theme=" + std::to_string(theme_) + "\r\n";
    text += "panel_scale=" + std::to_string(chance_.between(50, 110)) + "\r\n";
    text += "panel_x=" + std::to_string(chance_.between(-50, 900)) + "\r\n";
    text += "panel_visible=" + std::to_string(chance_.oneIn(6) ? 0 : 1) + "\r\n";
    text += "text_auto_open=" + std::to_string(chance_.below(2)) + "\r\n";
    text += "nrSelf=" + std::to_string(chance_.below(2)) + "\r\n";
    replaceFile(places_.dataFolder() / "settings.ini", text);
}

void PluginLife::start() {
    plugin_.exports().init();
}

void PluginLife::doSomething() {
    const Deed& deed = chance_.oneOf(kDeeds);
    tell(deed.name);
    (this->*deed.run)();
}

void PluginLife::pump() {
    for (const HostEvent& event : host_.advance(clock_.tickMs())) plugin_.deliver(event);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

void PluginLife::wait(int ms) {
    const std::uint64_t end = clock_.tickMs() + static_cast<std::uint64_t>(ms);
    for (pump(); clock_.tickMs() < end; pump()) pauseBriefly();
}

void PluginLife::writeTelemetry() {
    FakeTelemetry telemetry;
    telemetry.ok = !chance_.oneIn(4);
    for (FakeRadio& radio : telemetry.radios) radio.activeKhz = chance_.oneOf(kFrequencies);
    std::string text = telemetryText(telemetry, clock_.unixSeconds());
    if (chance_.oneIn(4)) text.resize(static_cast<std::size_t>(chance_.below(static_cast<int>(text.size()))));
    replaceFile(places_.dataFolder() / "telemetry.json", text);
}

void PluginLife::playVoices() {
    crowd_.work(plugin_.exports());
}

void PluginLife::talk() {
    host_.setTalking(kCircuitServer, chance_.oneIn(2) ? kPilotClient : kControllerClient, chance_.oneIn(2));
    pump();
}

void PluginLife::receiveTexts() {
    HostTextMessage message;
    for (int i = chance_.between(1, 8); i > 0; i--) {
        message.message = "CLEARED TO " + std::string(static_cast<std::size_t>(chance_.below(2000)), 'x');
        plugin_.deliver(message);
    }
}

void PluginLife::chooseMenu() {
    plugin_.takeMenus();
    plugin_.exports().onMenuItemEvent(kCircuitServer, 0, 2, 0);
}

void PluginLife::toggleMessages() {
    plugin_.exports().onMenuItemEvent(kCircuitServer, 0, 3, 0);
}

void PluginLife::holdMessages() {
    post(findMessageWindow(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(300, 20));
}

void PluginLife::turnMessages() {
    for (int i = 0; i < 3; i++) post(findMessageWindow(), WM_KEYDOWN, chance_.oneIn(2) ? VK_LEFT : VK_RIGHT, 1);
}

// The system moves the window from now on, until the button is let go.
void PluginLife::holdPanel() {
    const PanelDriver panel(findPanel(), theme_);
    if (panel.window()) panel.press(panel.pointOn(kBackground));
}

void PluginLife::turnKnob() {
    const PanelDriver panel(findPanel(), theme_);
    if (!panel.window()) return;
    const auto knob = chance_.oneOf(std::array{kVolumeKnob, kSmallKnob, kLargeKnob});
    if (chance_.oneIn(2)) return panel.wheel(knob, chance_.oneIn(2) ? 120 : -120);
    POINT at = panel.pointOn(knob);
    panel.press(at);
    for (int i = 0; i < 5; i++, at.y -= 4) panel.move(at);
}

void PluginLife::pressKey() {
    const PanelDriver panel(findPanel(), theme_);
    if (panel.window()) panel.click(chance_.oneOf(std::array{kCustomKeyA, kFrequencyDisplay, kActiveMhzDigits}));
}

void PluginLife::swapFrequencies() {
    post(findPanel(), kPanelSwapMessage, 1, 0);
}

void PluginLife::openDialog() {
    plugin_.exports().onMenuItemEvent(kCircuitServer, 0, 1, 0);
}

void PluginLife::openDialogOnHostThread() {
    if (isInDialog_) return;
    if (hostThread_.joinable()) hostThread_.join();
    isInDialog_ = true;
    hostThread_ = std::thread([this] {
        plugin_.exports().configure(nullptr, nullptr);
        isInDialog_ = false;
    });
}

void PluginLife::workDialog() {
    const std::array commands{static_cast<int>(kVoiceTab),
                              static_cast<int>(kRadioTab),
                              static_cast<int>(kApply),
                              static_cast<int>(kSaveAndClose),
                              static_cast<int>(kCancel),
                              static_cast<int>(kPreviewMessages),
                              static_cast<int>(kClearMessages),
                              static_cast<int>(kMasterToggle),
                              languageControl(3),
                              languageControl(7)};
    for (int i = 0; i < 3; i++) post(findDialog(), WM_COMMAND, static_cast<WPARAM>(chance_.oneOf(commands)), 0);
}

void PluginLife::holdDialog() {
    const HWND dialog = findDialog();
    if (!dialog) return;
    const POINT at = DialogDriver(dialog, 0).pointOnTitle();
    post(dialog, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
}

void PluginLife::letGo() {
    for (const HWND window : {findPanel(), findMessageWindow(), findDialog()}) {
        post(window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(40, 40));
        post(window, WM_LBUTTONUP, 0, MAKELPARAM(40, 40));
    }
}

void PluginLife::hangWorker() {
    for (const std::uint32_t worker : childProcesses(kWorkerName)) suspendProcess(worker);
}

void PluginLife::killWorker() {
    for (const std::uint32_t worker : childProcesses(kWorkerName)) killProcess(worker);
}

void PluginLife::startAgain() {
    plugin_.exports().init();
}

void PluginLife::changeTab() {
    plugin_.exports().currentServerConnectionChanged(chance_.oneIn(2) ? 0 : kCircuitServer);
    plugin_.exports().onConnectStatusChangeEvent(kCircuitServer, chance_.below(5), 0);
}

void PluginLife::lockSettings() {
    if (!locked_) locked_ = std::make_unique<LockedFile>(places_.dataFolder() / "settings.ini");
}

void PluginLife::comeToFront() {
    if (const auto window = static_cast<HWND>(findOwnWindow(L"StandInClient"))) SetForegroundWindow(window);
}

void PluginLife::shutDown() {
    plugin_.exports().shutdown();
}

std::vector<std::string> PluginLife::leftovers() {
    std::vector<std::string> left;
    for (const wchar_t* window : {L"CorvalisRadioPanel", L"CorvalisTextMessage", L"CorvalisSettingsClass"}) {
        if (findOwnWindow(window)) left.push_back("a window " + toUtf8(window));
    }
    if (!waitFor([this] { return !isInDialog_; })) left.push_back("the dialog on the host's thread");
    if (!waitFor([] { return childProcesses(kWorkerName).empty(); })) left.push_back("a worker");
    const std::size_t calls = host_.calls().size();
    wait(kLongerThanAPassMs);
    if (host_.calls().size() != calls) left.push_back("a thread that calls the host");
    for (const std::string& problem : host_.problems()) left.push_back("a broken rule of the host: " + problem);
    for (const std::string& leak : host_.leaks()) left.push_back("not given back to the host: " + leak);
    return left;
}

bool PluginLife::leftNothing(const std::vector<std::string>& leftovers) const {
    for (const std::string& left : leftovers) std::printf("LEFT     %s, after: %s\n", left.c_str(), story().c_str());
    return leftovers.empty();
}

void PluginLife::unload() {
    if (isInDialog_) {  // its code is about to go, and whoever waits for it waits for ever
        std::printf("STUCK    in a dialog that does not close (window %p), after: %s\n",
                    static_cast<void*>(findDialog()), story().c_str());
        TerminateProcess(GetCurrentProcess(), kStuckExit);
    }
    if (hostThread_.joinable()) hostThread_.join();
    crowd_.rest();
    plugin_.unload();
    locked_.reset();
}

HWND makeClientWindow() {
    WNDCLASSW description = {};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = L"StandInClient";
    RegisterClassW(&description);
    return CreateWindowExW(0, description.lpszClassName, L"Stand-in voice client", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60,
                           60, 500, 400, nullptr, nullptr, description.hInstance, nullptr);
}
