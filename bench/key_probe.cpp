#include "key_probe.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace tavrelon::bench {

namespace {

struct Modifier {
    std::string_view name;
    const char* keysym;
    unsigned mask;
};
constexpr std::array<Modifier, 4> modifiers{{{"shift", "Shift_L", ShiftMask},
                                             {"ctrl", "Control_L", ControlMask},
                                             {"alt", "Alt_L", Mod1Mask},
                                             {"super", "Super_L", Mod4Mask}}};
constexpr std::chrono::seconds lostAfter{1};

}  // namespace

KeyProbe::KeyProbe() : display_(XOpenDisplay(nullptr)) {
    if (!display_)
        throw std::runtime_error("no X display");
    openKeyboard();
    openWindow();
    awaitFocus();
}

KeyProbe::~KeyProbe() {
    if (keyboard_)
        XCloseDevice(display_, keyboard_);
    XCloseDisplay(display_);
}

void KeyProbe::openKeyboard() {
    int count = 0;
    XDeviceInfo* devices = XListInputDevices(display_, &count);
    for (int index = 0; index < count && !keyboard_; ++index) {
        const std::string_view name = devices[index].name;
        if (devices[index].use == IsXExtensionKeyboard && name.find("XTEST") == std::string_view::npos &&
            name.find("Xvfb") != std::string_view::npos)
            keyboard_ = XOpenDevice(display_, devices[index].id);
    }
    XFreeDeviceList(devices);
}

void KeyProbe::openWindow() {
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 40, 40, 300, 120, 0, 0, 0xFFFFFF);
    XStoreName(display_, window_, "key-probe");
    XClassHint hint{const_cast<char*>("key-probe"), const_cast<char*>("KeyProbe")};
    XSetClassHint(display_, window_, &hint);
    const long pid = ::getpid();
    XChangeProperty(display_, window_, XInternAtom(display_, "_NET_WM_PID", False), XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&pid), 1);
    XSelectInput(display_, window_, KeyPressMask | FocusChangeMask | StructureNotifyMask);
    XMapWindow(display_, window_);
}

void KeyProbe::awaitFocus() {
    XEvent request{};
    request.xclient.type = ClientMessage;
    request.xclient.window = window_;
    request.xclient.message_type = XInternAtom(display_, "_NET_ACTIVE_WINDOW", False);
    request.xclient.format = 32;
    request.xclient.data.l[0] = 2;  // asked for by the user, as a pager does
    const auto end = Clock::now() + std::chrono::seconds(5);
    while (!focused_ && Clock::now() < end) {
        nextPress(Clock::now() + std::chrono::milliseconds(200));
        if (!focused_)
            XSendEvent(display_, DefaultRootWindow(display_), False, SubstructureRedirectMask | SubstructureNotifyMask,
                       &request);
    }
    if (!focused_)
        throw std::runtime_error("the window did not get the focus within 5 s");
}

unsigned KeyProbe::keycodeOf(const std::string& name) const {
    const auto keysym = XStringToKeysym(name.c_str());
    const unsigned keycode = keysym == NoSymbol ? 0 : XKeysymToKeycode(display_, keysym);
    if (keycode == 0)
        throw std::runtime_error("no key gives " + name);
    return keycode;
}

KeyProbe::Chord KeyProbe::parse(const std::string& chord) const {
    Chord parsed;
    std::istringstream parts(chord);
    for (std::string part; std::getline(parts, part, '+');) {
        const Modifier* found = nullptr;
        for (const auto& modifier : modifiers) {
            if (modifier.name == part)
                found = &modifier;
        }
        if (found) {
            parsed.modifierKeys.push_back(keycodeOf(found->keysym));
            parsed.modifierMask |= found->mask;
        } else {
            parsed.key = keycodeOf(part);
        }
    }
    if (parsed.key == 0)
        throw std::runtime_error("no key in the chord " + chord);
    return parsed;
}

void KeyProbe::send(unsigned keycode, bool down) {
    if (keyboard_)
        XTestFakeDeviceKeyEvent(display_, keyboard_, keycode, down ? True : False, nullptr, 0, CurrentTime);
    else
        XTestFakeKeyEvent(display_, keycode, down ? True : False, CurrentTime);
}

KeyProbe::Clock::time_point KeyProbe::strike(const std::string& chord) {
    const auto parsed = parse(chord);
    for (const auto modifier : parsed.modifierKeys)
        send(modifier, true);
    XSync(display_, False);
    const auto time = Clock::now();
    send(parsed.key, true);
    send(parsed.key, false);
    for (auto modifier = parsed.modifierKeys.rbegin(); modifier != parsed.modifierKeys.rend(); ++modifier)
        send(*modifier, false);
    XFlush(display_);
    return time;
}

std::optional<KeyProbe::KeyEvent> KeyProbe::nextPress(Clock::time_point until) {
    while (true) {
        while (XPending(display_) > 0) {
            XEvent event;
            XNextEvent(display_, &event);
            if (event.type == FocusIn || event.type == FocusOut)
                focused_ = event.type == FocusIn || event.xfocus.mode == NotifyGrab;
            if (event.type == KeyPress)
                return KeyEvent{event.xkey.keycode, event.xkey.state, Clock::now()};
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
        if (left.count() <= 0)
            return std::nullopt;
        pollfd readable{.fd = ConnectionNumber(display_), .events = POLLIN, .revents = 0};
        ::poll(&readable, 1, static_cast<int>(left.count()));
    }
}

std::optional<KeyProbe::KeyEvent> KeyProbe::awaitPress(const std::string& chord, std::chrono::milliseconds limit) {
    const auto wanted = parse(chord);
    const auto end = Clock::now() + limit;
    while (const auto event = nextPress(end)) {
        if (event->keycode == wanted.key && (event->modifiers & wanted.modifierMask) == wanted.modifierMask)
            return event;
    }
    return std::nullopt;
}

std::vector<std::chrono::nanoseconds> KeyProbe::latencies(const std::string& key, int count,
                                                          std::chrono::microseconds pause) {
    std::vector<std::chrono::nanoseconds> taken;
    const auto keycode = parse(key).key;
    for (int index = 0; index < count; ++index) {
        const auto struck = strike(key);
        while (const auto event = nextPress(struck + lostAfter)) {
            if (event->keycode == keycode) {
                taken.push_back(event->time - struck);
                break;
            }
        }
        std::this_thread::sleep_for(pause);
    }
    return taken;
}

KeyProbe::Flood KeyProbe::flood(int count) {
    constexpr int escapeEvery = 10;
    constexpr int burst = 20;  // about what a buffer of the server holds before it is read
    std::vector<unsigned> struck;
    Flood result;
    for (int index = 0; index < count; ++index) {
        const auto letter = std::string(1, static_cast<char>('a' + index % 26));
        const auto keycode = index % escapeEvery == 0 ? keycodeOf("Escape") : keycodeOf(letter);
        struck.push_back(keycode);
        send(keycode, true);
        send(keycode, false);
        if (index % burst != burst - 1 && index != count - 1)
            continue;
        XFlush(display_);
        while (result.received < static_cast<int>(struck.size())) {
            const auto event = nextPress(Clock::now() + lostAfter);
            if (!event)
                return result;
            if (event->keycode != struck[static_cast<std::size_t>(result.received)])
                ++result.misplaced;
            ++result.received;
        }
    }
    return result;
}

}  // namespace tavrelon::bench
