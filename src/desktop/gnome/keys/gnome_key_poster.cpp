#include "desktop/gnome/keys/gnome_key_poster.h"

#include "desktop/x11/connection/x11_connection.h"

namespace tavrelon::desktop {

namespace {

constexpr int xkbOverKernel = 8;
constexpr unsigned mostLayouts = 4;

struct PostedModifier {
    keys::Modifiers flag;
    const char* name;
};
constexpr PostedModifier postedModifiers[] = {
    {keys::shiftFlag, "shift"}, {keys::controlFlag | keys::commandFlag, "control"}, {keys::optionFlag, "alt"}};

}  // namespace

std::expected<std::unique_ptr<GnomeKeyPoster>, QString> GnomeKeyPoster::open(
    std::shared_ptr<ShellConnection> shell, std::unique_ptr<ShortcutTranslator> shortcuts) {
    auto layouts = X11Connection::open();
    if (!layouts)
        return std::unexpected(layouts.error());
    return std::unique_ptr<GnomeKeyPoster>(
        new GnomeKeyPoster(std::move(shell), std::move(shortcuts), *std::move(layouts)));
}

GnomeKeyPoster::GnomeKeyPoster(std::shared_ptr<ShellConnection> shell, std::unique_ptr<ShortcutTranslator> shortcuts,
                               std::unique_ptr<X11Connection> layouts)
    : shell_(std::move(shell)), shortcuts_(std::move(shortcuts)), layouts_(std::move(layouts)) {}

GnomeKeyPoster::~GnomeKeyPoster() = default;

/// The key's codes while each of the layouts is in force: only the shell knows which is.
text::Json GnomeKeyPoster::codesOf(keys::VirtualKey key) {
    bool isOutdated = !keyboard_;
    // Every client is told of a changed keyboard; nobody else reads here.
    while (const XPointer<xcb_generic_event_t> event{xcb_poll_for_event(layouts_->get())})
        isOutdated = true;
    if (isOutdated)
        if (auto keyboard = X11Keyboard::fromServer(*layouts_))
            keyboard_ = std::move(keyboard);
    auto codes = text::Json::array();
    for (unsigned layout = 0; keyboard_ && layout < mostLayouts; ++layout)
        if (const auto code = keyboard_->codeToPress(key, layout))
            codes.push_back(*code - xkbOverKernel);
    return codes;
}

void GnomeKeyPoster::press(keys::VirtualKey key, keys::Modifiers flags) {
    const KeyChord asked{key, flags};
    const auto chord = shortcuts_ ? shortcuts_->translate(asked) : asked;
    auto codes = chord ? codesOf(chord->key) : text::Json::array();
    if (codes.empty())
        return;
    auto modifiers = text::Json::array();
    for (const auto& modifier : postedModifiers)
        if (chord->flags.intersects(modifier.flag))
            modifiers.push_back(modifier.name);
    ++*presses_;
    const bool isPlain = modifiers.empty();
    text::Json question{{"modifiers", std::move(modifiers)}, {"codes", std::move(codes)}};
    if (isPlain)
        shell_->tell("press", std::move(question));
    else
        shell_->ask("press", std::move(question));
}

void GnomeKeyPoster::putModifiersAside() {
    if (++aside_ == 1)
        shell_->ask("aside");
}

void GnomeKeyPoster::giveModifiersBack() {
    if (--aside_ == 0)
        shell_->tell("back");
}

bool GnomeKeyPoster::state(const char* name) try {
    const auto answer = shell_->ask("keyboard");
    return answer && text::boolFrom(text::required(*answer, name));
} catch (const text::JsonError&) {
    return false;
}

}  // namespace tavrelon::desktop
