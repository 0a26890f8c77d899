#include "support/xtest_keyboard.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <span>
#include <stdexcept>
#include <string_view>

extern char** environ;

namespace tavrelon::testing {

struct XTestKeyboard::Display {
    Display() : x(XOpenDisplay(nullptr)) {
        if (!x)
            throw std::runtime_error("there is no X display");
        int count = 0;
        XDeviceInfo* all = XListInputDevices(x, &count);
        for (const auto& info : std::span(all, static_cast<std::size_t>(count))) {
            if (info.use != IsXExtensionKeyboard)
                continue;
            const bool posts = std::string_view(info.name).ends_with("XTEST keyboard");
            (posts ? posting : physical) = XOpenDevice(x, info.id);
        }
        XFreeDeviceList(all);
        if (!physical || !posting)
            throw std::runtime_error("the X server lacks a keyboard");
    }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    ~Display() {
        XCloseDevice(x, physical);
        XCloseDevice(x, posting);
        XCloseDisplay(x);
    }

    ::Display* x;
    XDevice* physical = nullptr;
    XDevice* posting = nullptr;
};

namespace {

std::vector<place::Code> codes(std::span<const char> bits) {
    std::vector<place::Code> codes;
    for (unsigned code = 0; code < 256; ++code)
        if (static_cast<unsigned char>(bits[code / 8]) >> (code % 8) & 1)
            codes.push_back(static_cast<place::Code>(code));
    return codes;
}

}  // namespace

XTestKeyboard::XTestKeyboard() : display_(std::make_unique<Display>()) {}
XTestKeyboard::~XTestKeyboard() = default;

void XTestKeyboard::press(place::Code code) {
    XTestFakeDeviceKeyEvent(display_->x, display_->physical, code, True, nullptr, 0, CurrentTime);
    XSync(display_->x, False);
}

void XTestKeyboard::release(place::Code code) {
    XTestFakeDeviceKeyEvent(display_->x, display_->physical, code, False, nullptr, 0, CurrentTime);
    XSync(display_->x, False);
}

void XTestKeyboard::strike(place::Code code) {
    press(code);
    release(code);
}

void XTestKeyboard::strikeWith(std::initializer_list<place::Code> modifiers, place::Code code) {
    for (const auto modifier : modifiers)
        press(modifier);
    strike(code);
    for (auto modifier = modifiers.end(); modifier != modifiers.begin();)
        release(*--modifier);
}

void XTestKeyboard::strikePosted(place::Code code) {
    XTestFakeKeyEvent(display_->x, code, True, CurrentTime);
    XTestFakeKeyEvent(display_->x, code, False, CurrentTime);
    XSync(display_->x, False);
}

void XTestKeyboard::lockGroup(unsigned group) {
    XkbLockGroup(display_->x, XkbUseCoreKbd, group);
    XSync(display_->x, False);
}

void XTestKeyboard::lockModifiers(unsigned mask) {
    constexpr unsigned all = 0xFF;
    XkbLockModifiers(display_->x, XkbUseCoreKbd, all, mask);
    XSync(display_->x, False);
}

void XTestKeyboard::latchModifiers(unsigned mask) {
    XkbLatchModifiers(display_->x, XkbUseCoreKbd, mask, mask);
    XSync(display_->x, False);
}

std::vector<place::Code> XTestKeyboard::downOnPostingDevice() {
    XDeviceState* state = XQueryDeviceState(display_->x, display_->posting);
    std::vector<place::Code> down;
    const auto* input = state->data;
    for (int i = 0; i < state->num_classes; ++i) {
        if (input->c_class == KeyClass)
            down = codes(reinterpret_cast<const XKeyState*>(input)->keys);
        input = reinterpret_cast<const XInputClass*>(reinterpret_cast<const char*>(input) + input->length);
    }
    XFreeDeviceState(state);
    return down;
}

std::vector<place::Code> XTestKeyboard::down() {
    char keys[32] = {};
    XQueryKeymap(display_->x, keys);
    return codes(keys);
}

bool runProgram(std::initializer_list<const char*> command) {
    std::vector<char*> arguments;
    for (const char* word : command)
        arguments.push_back(const_cast<char*>(word));
    arguments.push_back(nullptr);
    pid_t process = 0;
    if (posix_spawnp(&process, arguments.front(), nullptr, nullptr, arguments.data(), environ) != 0)
        return false;
    int status = 0;
    return waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace tavrelon::testing
