#pragma once

#include <QString>
#include <optional>

#include "support/clipboard_peer.h"

namespace tavrelon::testing {

/// What a window says about itself; nothing is set where a field is absent.
struct TestWindowProperties {
    std::optional<qint64> processIdentifier{};
    std::optional<QString> machine{};
    std::optional<QString> windowClass{};  ///< the instance is the same in lower case
    std::optional<QString> title{};
};

/// A visible window of a client of its own, for the window manager to put in front; it is destroyed with this object.
class TestWindow {
 public:
    explicit TestWindow(const TestWindowProperties& properties);

    xcb_window_t window() const { return peer_.window(); }
    void destroy();
    /// Takes the input focus without asking a window manager.
    void takeFocus();

 private:
    bool isViewable() const;
    void put(const QString& property, const QString& type, const QByteArray& bytes);

    ClipboardPeer peer_;
};

/// The name of this machine as programs write it on their windows.
QString thisMachine();

}  // namespace tavrelon::testing
