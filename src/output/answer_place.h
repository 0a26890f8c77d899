#pragma once

#include <optional>

#include "platform/key_target.h"
#include "platform/platform.h"

namespace tavrelon::output {

/// A place in the text of a field.
struct FieldPlace {
    platform::AXElement element;
    qint64 location = 0;  ///< in UTF-16 units
    bool operator==(const FieldPlace&) const = default;
};

/// The user's characters that an answer replaces, as far as they are known: they stand where they were found, or before
/// the caret.
struct StandingText {
    QString text;
    std::optional<FieldPlace> place{};
};

/// Where what is written is meant to go, and whether the keys still go there. Main thread; the questions are bounded as
/// those of the ports. What cannot be told of an element counts as unchanged; before anything is remembered every place
/// counts as the right one, but for password fields, which never do. While a program holds the keyboard no place does.
class AnswerPlace {
 public:
    explicit AnswerPlace(platform::Platform& platform) : platform_(platform) {}

    /// Takes the window and the element that have the focus now.
    void remember();

    /// Takes the window of an application, whichever of its elements gets the focus.
    void remember(const platform::RunningApplication& application);

    bool isInFront() const;

    /// The quick half of the question, for between two keys.
    bool isWindowInFront() const;

    /// Whether a terminal has the focus.
    bool isTerminal() const;

    /// Whether no key is known that pastes in the window in front.
    bool takesNoPaste() const;

    /// The modifiers with which V pastes. Terminals that have a window of their own are known by it, and what posts the
    /// key sees to those; inside of another program's window accessibility tells them.
    keys::Modifiers pasteModifiers() const;

    /// The field with the focus. Fields keep some of the characters that keys type as others: a line's end, and a space
    /// at it; what is compared is made equal in that.
    struct Field {
        platform::AXElement element;
        QString text;
        text::Utf16Range selection;

        /// Where these characters are: where they were found, else before the caret. Absent when they are gone.
        std::optional<text::Utf16Range> rangeOf(const StandingText& standing) const;
        bool isBeforeCaret(const QString& standing) const;
    };

    /// Absent where it cannot be read, and in terminals, whose text is not the user's alone.
    std::optional<Field> field() const;

 private:
    std::optional<platform::AXElement> focusedElement() const;
    bool holdsText(const platform::AXElement& element) const;
    bool isOtherElement() const;

    platform::Platform& platform_;
    std::optional<platform::KeyTarget> target_;
};

}  // namespace tavrelon::output
