#pragma once

#include <expected>
#include <memory>

#include "desktop/x11/x11_xtest_modifiers.h"
#include "platform/key_poster.h"

namespace tavrelon::desktop {

/// Posts keys through the XTest extension. Command becomes Control, the shortcut modifier of this desktop. If the
/// server goes away, presses do nothing.
class X11KeyPoster : public platform::KeyPoster {
 public:
    /// `posted` is shared with the event tap, which leaves our keys out. The error is a sentence for the log.
    static std::expected<std::unique_ptr<X11KeyPoster>, QString> open(async::MainLoop& loop,
                                                                      std::shared_ptr<PostedKeys> posted);

    void press(keys::VirtualKey key, keys::Modifiers flags) override;
    void putModifiersAside() override;
    void giveModifiersBack() override;

 private:
    X11KeyPoster(std::unique_ptr<X11XTest> xtest, std::unique_ptr<X11Connection> watch)
        : xtest_(std::move(xtest)), modifiers_(*xtest_, std::move(watch)) {}

    void stroke(KeyCode code, const std::vector<KeyCode>& modifierKeys);

    std::unique_ptr<X11XTest> xtest_;
    X11HeldModifiers modifiers_;
    int asideDepth_ = 0;
};

}  // namespace tavrelon::desktop
