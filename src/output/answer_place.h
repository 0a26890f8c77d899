#pragma once

#include <optional>

#include "platform/key_target.h"
#include "platform/platform.h"

namespace tavrelon::output {

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

    /// What stands before the caret of the field with the focus.
    struct BeforeCaret {
        platform::AXElement element;
        QString text;
        bool isSelecting = false;  ///< something is selected, so there is no caret
    };

    /// Absent where it cannot be read, and in terminals, whose text is not the user's alone.
    std::optional<BeforeCaret> beforeCaret() const;

 private:
    std::optional<platform::AXElement> focusedElement() const;
    bool holdsText(const platform::AXElement& element) const;
    bool isOtherElement() const;

    platform::Platform& platform_;
    std::optional<platform::KeyTarget> target_;
};

}  // namespace tavrelon::output
