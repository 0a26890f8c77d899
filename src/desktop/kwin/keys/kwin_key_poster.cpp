#include "desktop/kwin/keys/kwin_key_poster.h"

#include <linux/input-event-codes.h>

#include <vector>

namespace tavrelon::desktop {

namespace {

using fake_input::KeyState;

constexpr std::uint32_t xkbOverKernel = 8;

struct PostedModifier {
    keys::Modifiers flag;
    std::uint32_t code;
};
constexpr PostedModifier postedModifiers[] = {{keys::shiftFlag, KEY_LEFTSHIFT},
                                              {keys::controlFlag | keys::commandFlag, KEY_LEFTCTRL},
                                              {keys::optionFlag, KEY_LEFTALT}};
constexpr std::uint32_t shifts[] = {KEY_LEFTSHIFT, KEY_RIGHTSHIFT};
constexpr std::uint32_t otherModifiers[] = {KEY_LEFTALT, KEY_RIGHTALT, KEY_LEFTMETA, KEY_RIGHTMETA, KEY_RIGHTCTRL};

}  // namespace

std::expected<std::unique_ptr<KWinKeyPoster>, QString> KWinKeyPoster::open(
    WaylandConnection& connection, std::shared_ptr<KWinBus> bus, std::shared_ptr<OwnPosts> posts,
    std::unique_ptr<ShortcutTranslator> shortcuts) {
    auto* device = connection.globals().fakeInput;
    if (!device)
        return std::unexpected(
            QStringLiteral("KWin lets this program post no keys: that takes a desktop file which names the program by "
                           "its full path, as the package installs it."));
    connection.call([device] { fake_input::authenticate(device, "Tavrelon", "pastes its answers"); });
    return std::unique_ptr<KWinKeyPoster>(
        new KWinKeyPoster(connection, std::move(bus), std::move(posts), std::move(shortcuts)));
}

void KWinKeyPoster::press(keys::VirtualKey key, keys::Modifiers flags) {
    const KeyChord asked{key, flags};
    const auto chord = shortcuts_ ? shortcuts_->translate(asked) : asked;
    const auto code = chord ? layouts_.codeOf(chord->key) : KeyCode{0};
    if (code == 0)
        return;
    std::vector<std::uint32_t> codes;
    for (const auto& modifier : postedModifiers)
        if (chord->flags.intersects(modifier.flag))
            codes.push_back(modifier.code);
    if (!codes.empty())
        posts_->note();
    codes.push_back(code - xkbOverKernel);
    // All of it leaves in one piece, so that a program that dies leaves no key down.
    connection_.call([device = connection_.globals().fakeInput, codes = std::move(codes), presses = presses_] {
        ++*presses;
        for (const auto each : codes)
            fake_input::key(device, each, KeyState::Pressed);
        for (auto each = codes.rbegin(); each != codes.rend(); ++each)
            fake_input::key(device, *each, KeyState::Released);
    });
}

void KWinKeyPoster::putModifiersAside() {
    if (++aside_ > 1)
        return;
    posts_->note();
    connection_.call([device = connection_.globals().fakeInput] {
        for (const auto code : shifts)
            fake_input::key(device, code, KeyState::Released);
        // Control goes down first: Super or Alt that is let go alone opens the launcher or a menu.
        fake_input::key(device, KEY_LEFTCTRL, KeyState::Pressed);
        for (const auto code : otherModifiers)
            fake_input::key(device, code, KeyState::Released);
        fake_input::key(device, KEY_LEFTCTRL, KeyState::Released);
    });
}

}  // namespace tavrelon::desktop
