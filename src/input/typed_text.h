#pragma once

#include <functional>

#include "async/lifetime.h"
#include "platform/platform.h"

namespace tavrelon::input {

/// The private copy of what the user types while a text input is open, for fields that cannot be read. It follows the
/// keys and not what an input method makes of them. Main thread.
///
/// It belongs to the window that had the focus when it began, and is forgotten when the keyboard goes elsewhere or
/// nothing was typed for two minutes: whoever comes back after that does not mean the old request.
class TypedText {
 public:
    explicit TypedText(platform::Platform& platform) : platform_(platform) {}

    /// Begins anew, empty. `onAbandoned` is called once if the copy is forgotten without an `end`.
    void begin(std::function<void()> onAbandoned);

    /// Ends the copying and gives what there is; empty where nothing was begun.
    QString end();

    /// Whether the session tells what is typed; of the copying that began last.
    bool wereKeysTold() const { return wereKeysTold_; }

    /// What was typed so far.
    const QString& text() const { return text_; }

 private:
    void typed(const platform::KeyEvent& event);
    void waitForKeys();
    void abandon();

    platform::Platform& platform_;
    QString text_;
    bool wereKeysTold_ = true;
    std::function<void()> onAbandoned_;
    async::Timer idle_;
};

}  // namespace tavrelon::input
