#pragma once

#include <QString>
#include <optional>

#include "keys/modifiers.h"
#include "keys/virtual_keys.h"
#include "platform/workspace.h"

namespace tavrelon::desktop {

/// A key pressed with modifiers.
struct KeyChord {
    keys::VirtualKey key = 0;
    keys::Modifiers flags;
    bool operator==(const KeyChord&) const = default;
};

/// What shortcuts become in the window in front. Main thread.
class ShortcutTranslator {
 public:
    virtual ~ShortcutTranslator() = default;

    /// The chord to press for a shortcut; absent when nothing is to be pressed. Chords that are no shortcut stay as
    /// they are.
    virtual std::optional<KeyChord> translate(KeyChord asked) = 0;

    /// Whether the window in front may take a chord twice whose modifiers are pressed as keys, and gets them as a
    /// state.
    virtual bool takesChordsTwice() { return false; }
};

inline constexpr KeyChord terminalCopyChord{keys::keyC, keys::controlFlag | keys::shiftFlag};
inline constexpr KeyChord terminalPasteChord{keys::keyV, keys::controlFlag | keys::shiftFlag};
inline constexpr keys::VirtualKey keyInsert = 114;
inline constexpr KeyChord primaryPasteChord{keyInsert, keys::shiftFlag};
inline constexpr KeyChord insertCopyChord{keyInsert, keys::controlFlag};

/// How the user of a terminal, or of an editor with keys of its own, copies and pastes. In a terminal Control+C ends
/// the running program and Control+A goes to the line's begin, so no shortcut of other applications may reach one.
struct TerminalShortcuts {
    enum class Copy {
        ByChord,
        OfPrimary,  ///< no key: what is selected is the primary selection already
        Never,      ///< nobody knows which key
    };
    enum class Paste {
        OfClipboard,  ///< by a chord
        OfPrimary,    ///< Shift+Insert, which takes the primary selection
        Never,        ///< nobody knows which key
    };

    Copy copy = Copy::ByChord;
    Paste paste = Paste::OfClipboard;
    KeyChord copyChord = terminalCopyChord;
    KeyChord pasteChord = terminalPasteChord;
    bool isTerminal = true;  ///< where a line's end may run what stands before it
    bool operator==(const TerminalShortcuts&) const = default;
};

/// The shortcuts of the program that a window belongs to, by the two parts of its class; absent where they are the
/// usual ones. Upper and lower case are the same.
std::optional<TerminalShortcuts> terminalShortcutsOf(const QString& windowClass, const QString& windowInstance);
platform::WindowKind windowKindOf(const QString& windowClass, const QString& windowInstance);

}  // namespace tavrelon::desktop
