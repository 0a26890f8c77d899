#include "desktop/qt/qt_raw_keys.h"

#include <QGuiApplication>
#include <QKeyEvent>

namespace tavrelon::desktop {

using platform::KeyEvent;
using platform::RawKey;

QtRawKeys::QtRawKeys(NativeKeyNames names) : names_(std::move(names)) {
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &QtRawKeys::follow);
}

QtRawKeys::~QtRawKeys() {
    release();
}

bool QtRawKeys::capture(Handler handler, std::function<void()> left) {
    release();
    held_ = QGuiApplication::focusWindow();
    if (!held_)
        return false;
    names_.refresh();
    qGuiApp->installEventFilter(this);
    handler_ = std::move(handler);
    left_ = std::move(left);
    held_->setKeyboardGrabEnabled(true);
    return true;
}

void QtRawKeys::release() {
    if (!std::exchange(handler_, nullptr))
        return;
    left_ = nullptr;
    qGuiApp->removeEventFilter(this);
    if (held_)
        held_->setKeyboardGrabEnabled(false);
    held_ = nullptr;
}

/// Once another window has the focus, the keyboard is its own again.
void QtRawKeys::follow(QWindow* focused) {
    if (!handler_ || (held_ && focused == held_))
        return;
    const auto left = std::move(left_);
    release();
    left();
}

bool QtRawKeys::eventFilter(QObject* receiver, QEvent* event) {
    if (!receiver->isWindowType())
        return false;
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept();  // not a shortcut, but a key
            return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease: {
            const auto handler = handler_;  // it may let go of itself
            if (const auto key = rawKey(*static_cast<QKeyEvent*>(event)))
                handler(*key);
            return true;
        }
        default:
            return false;
    }
}

std::optional<RawKey> QtRawKeys::rawKey(const QKeyEvent& event) const {
    if (event.isAutoRepeat())
        return std::nullopt;
    const bool isPress = event.type() == QEvent::KeyPress;
    const auto named = [&](bool asPress) {
        return names_.eventOf({event.nativeScanCode(), event.nativeModifiers(), asPress, false});
    };
    if (const auto key = named(isPress))
        return RawKey{key->type == KeyEvent::Type::KeyDown ? RawKey::Type::Pressed : RawKey::Type::ModifiersChanged,
                      key->keyCode, key->modifierFlags};
    // The release of a key that is no modifier goes by the name of its press.
    const auto press = isPress ? std::nullopt : named(true);
    if (!press || press->type != KeyEvent::Type::KeyDown)
        return std::nullopt;
    return RawKey{RawKey::Type::Released, press->keyCode, press->modifierFlags};
}

}  // namespace tavrelon::desktop
