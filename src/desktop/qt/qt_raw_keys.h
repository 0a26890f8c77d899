#pragma once

#include <QObject>
#include <QPointer>
#include <QWindow>
#include <optional>

#include "platform/key_event.h"
#include "platform/raw_keys.h"

namespace tavrelon::desktop {

/// What the toolkit knows of a key: its code and the modifiers before it, both as the window system counts them.
struct NativeKey {
    quint32 code = 0;
    quint32 modifiers = 0;
    bool isPress = true;
    bool isRepeat = false;
};

/// What the toolkit cannot tell of keys.
struct NativeKeyNames {
    std::function<void()> refresh;  ///< a capture begins: the keyboard may have changed since the last
    std::function<std::optional<platform::KeyEvent>(const NativeKey&)> eventOf;  ///< nothing if no hotkey can mean it
};

/// Watches the key events of all our windows. While it captures, the window in front holds the whole keyboard. Main
/// thread.
class QtRawKeys : public QObject, public platform::RawKeys {
 public:
    explicit QtRawKeys(NativeKeyNames names);
    ~QtRawKeys() override;

    bool capture(Handler handler, std::function<void()> left) override;
    void release() override;

    bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
    void follow(QWindow* focused);
    std::optional<platform::RawKey> rawKey(const QKeyEvent& event) const;

    NativeKeyNames names_;
    Handler handler_;
    std::function<void()> left_;
    QPointer<QWindow> held_;
};

}  // namespace tavrelon::desktop
