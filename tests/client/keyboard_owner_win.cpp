#include "tests/client/keyboard_owner_win.h"
#include "tests/client/test_machine_win.h"

namespace {

constexpr const wchar_t* kClass = L"CorvalisTestKeyboardOwner";

void inject(const INPUT& input) {
    INPUT copy = input;
    SendInput(1, &copy, sizeof copy);
}

void injectMouse(DWORD flags, POINT at, int wheel = 0) {
    // In 65536ths of the screen; half a pixel more, so that rounding down finds the pixel.
    const auto share = [](LONG pixel, int all) { return static_cast<LONG>((2 * pixel + 1) * 32768LL / all); };
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = share(at.x, GetSystemMetrics(SM_CXSCREEN));
    input.mi.dy = share(at.y, GetSystemMetrics(SM_CYSCREEN));
    input.mi.mouseData = static_cast<DWORD>(wheel);
    input.mi.dwFlags = flags | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE;
    inject(input);
}

}  // namespace

KeyboardOwner::KeyboardOwner() : thread_([this] { run(); }) {
    waitFor([this] { return window_ != nullptr; });
    takeKeyboard();
}

KeyboardOwner::~KeyboardOwner() {
    PostMessageW(window_, WM_CLOSE, 0, 0);
    thread_.join();
}

bool KeyboardOwner::takeKeyboard() {
    return waitFor(
        [this] {
            SendMessageW(window_, WM_APP, 0, 0);  // a window's own thread may activate it
            return hasKeyboard();
        },
        30'000);
}

std::string KeyboardOwner::keys() const {
    const std::scoped_lock lock(mutex_);
    return keys_;
}

LRESULT CALLBACK KeyboardOwner::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<KeyboardOwner*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_KEYDOWN && self) {
        const std::scoped_lock lock(self->mutex_);
        self->keys_ += static_cast<char>(wParam);
    }
    if (message == WM_KILLFOCUS && self) self->losses_++;
    if (message == WM_APP) SetForegroundWindow(window);
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

void KeyboardOwner::run() {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.lpfnWndProc = procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = kClass;
    RegisterClassExW(&description);
    const HWND window = CreateWindowExW(0, kClass, L"", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr, nullptr,
                                        description.hInstance, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    window_ = window;
    MSG message;
    while (window && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    UnregisterClassW(kClass, description.hInstance);
}

void typeKey(WORD key) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    inject(input);
    input.ki.dwFlags = KEYEVENTF_KEYUP;
    inject(input);
}

void clickScreen(POINT at) {
    injectMouse(0, at);
    injectMouse(MOUSEEVENTF_LEFTDOWN, at);
    injectMouse(MOUSEEVENTF_LEFTUP, at);
}

void dragScreen(POINT from, POINT to) {
    injectMouse(0, from);
    injectMouse(MOUSEEVENTF_LEFTDOWN, from);
    injectMouse(0, to);
    injectMouse(MOUSEEVENTF_LEFTUP, to);
}

void wheelScreen(POINT at, int delta) {
    injectMouse(0, at);
    injectMouse(MOUSEEVENTF_WHEEL, at, delta);
}
