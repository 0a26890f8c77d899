#include "desktop/applications/terminal_shortcuts.h"

#include <algorithm>
#include <string_view>

namespace tavrelon::desktop {

namespace {

struct KnownTerminal {
    std::string_view windowClass;  ///< in lower case
    TerminalShortcuts shortcuts;
};

constexpr TerminalShortcuts controlShift{TerminalShortcuts::Copy::ByChord, TerminalShortcuts::Paste::OfClipboard};
constexpr TerminalShortcuts primary{TerminalShortcuts::Copy::OfPrimary, TerminalShortcuts::Paste::OfPrimary};
/// Nearly all terminals of today paste with Control+Shift+V; where one does not, it does nothing.
constexpr TerminalShortcuts unknownTerminal{TerminalShortcuts::Copy::Never, TerminalShortcuts::Paste::OfClipboard};

/// Yanks and kills, and takes Control+V and Control+C for the begin of something else.
constexpr TerminalShortcuts emacs{
    .copyChord = {keys::keyW, keys::optionFlag}, .pasteChord = {keys::keyY, keys::controlFlag}, .isTerminal = false};

/// Its keys are the user's own, and Control+V takes the next key for a character.
constexpr TerminalShortcuts modalEditor{
    .copy = TerminalShortcuts::Copy::Never, .paste = TerminalShortcuts::Paste::Never, .isTerminal = false};

/// Has terminals inside, where Control+C ends what runs. Control+Insert copies in the text and does no harm in those.
constexpr TerminalShortcuts codeEditor{
    .copyChord = insertCopyChord, .pasteChord = {keys::keyV, keys::controlFlag}, .isTerminal = false};

constexpr KnownTerminal knownTerminals[] = {
    {"emacs", emacs},
    {"gvim", modalEditor},
    {"neovide", modalEditor},
    {"nvim-qt", modalEditor},
    {"code", codeEditor},
    {"code-oss", codeEditor},
    {"codium", codeEditor},
    {"vscodium", codeEditor},
    {"cursor", codeEditor},
    {"windsurf", codeEditor},
    // With the VTE widget
    {"gnome-terminal", controlShift},
    {"gnome-terminal-server", controlShift},
    {"xfce4-terminal", controlShift},
    {"lxterminal", controlShift},
    {"mate-terminal", controlShift},
    {"terminator", controlShift},
    {"tilix", controlShift},
    {"com.gexperts.tilix", controlShift},
    {"guake", controlShift},
    {"tilda", controlShift},
    {"sakura", controlShift},
    {"roxterm", controlShift},
    {"termite", controlShift},
    {"kgx", controlShift},
    {"org.gnome.console", controlShift},
    {"org.gnome.terminal", controlShift},
    {"org.gnome.ptyxis", controlShift},
    {"com.raggesilver.blackbox", controlShift},
    {"io.elementary.terminal", controlShift},
    // Of other make
    {"konsole", controlShift},
    {"org.kde.konsole", controlShift},
    {"yakuake", controlShift},
    {"org.kde.yakuake", controlShift},
    {"qterminal", controlShift},
    {"cool-retro-term", controlShift},
    {"deepin-terminal", controlShift},
    {"terminology", controlShift},
    {"alacritty", controlShift},
    {"kitty", controlShift},
    {"org.wezfurlong.wezterm", controlShift},
    {"wezterm-gui", controlShift},
    {"rio", controlShift},
    {"com.mitchellh.ghostty", controlShift},
    {"ghostty", controlShift},
    {"contour", controlShift},
    {"foot", controlShift},
    {"footclient", controlShift},
    {"st-256color", controlShift},
    {"hyper", controlShift},
    {"tabby", controlShift},
    {"dev.warp.warp", controlShift},
    // Those that go by the primary selection
    {"xterm", primary},
    {"uxterm", primary},
    {"lxterm", primary},
    {"koi8rxterm", primary},
    {"rxvt", primary},
    {"rxvt-unicode", primary},
    {"urxvt", primary},
    {"urxvtd", primary},
    {"mlterm", primary},
    {"eterm", primary},
    {"aterm", primary},
    {"mrxvt", primary},
    {"putty", primary},
    {"pterm", primary},
};

}  // namespace

platform::WindowKind windowKindOf(const QString& windowClass, const QString& windowInstance) {
    const auto known = terminalShortcutsOf(windowClass, windowInstance);
    if (known && known->paste == TerminalShortcuts::Paste::Never)
        return platform::WindowKind::WithoutPaste;
    return known && known->isTerminal ? platform::WindowKind::Terminal : platform::WindowKind::Ordinary;
}

std::optional<TerminalShortcuts> terminalShortcutsOf(const QString& windowClass, const QString& windowInstance) {
    for (const auto& name : {windowClass.toLower(), windowInstance.toLower()}) {
        const auto wanted = name.toStdString();
        const auto* const found = std::ranges::find(knownTerminals, wanted, &KnownTerminal::windowClass);
        if (found != std::ranges::end(knownTerminals))
            return found->shortcuts;
    }
    const auto name = windowClass.toLower();
    if (name.startsWith(QStringLiteral("jetbrains-")))
        return codeEditor;
    if (name.contains(QStringLiteral("terminal")) || name.endsWith(QStringLiteral("term")))
        return unknownTerminal;
    return std::nullopt;
}

}  // namespace tavrelon::desktop
