#include "desktop/qt/qt_raw_keys.h"

#include <QGuiApplication>
#include <QKeyEvent>

namespace tavrelon::desktop {

QtRawKeys::QtRawKeys(NativeKeyNames names) : names_(std::move(names)) {
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* window) {
        if (handler_)
            hold(window);
    });
}

QtRawKeys::~QtRawKeys() {
    release();
}

void QtRawKeys::capture(Handler handler) {
    if (!handler_) {
        names_.refresh();
        qGuiApp->installEventFilter(this);
    }
    handler_ = std::move(handler);
    hold(QGuiApplication::focusWindow());
}

void QtRawKeys::release() {
    if (!std::exchange(handler_, nullptr))
        return;
    qGuiApp->removeEventFilter(this);
    hold(nullptr);
}

/// Once another application has the focus, the keyboard is its own again.
void QtRawKeys::hold(QWindow* window) {
    if (held_ == window)
        return;
    if (held_)
        held_->setKeyboardGrabEnabled(false);
    held_ = window;
    if (held_)
        held_->setKeyboardGrabEnabled(true);
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
            const auto& key = *static_cast<QKeyEvent*>(event);
            const auto raw = names_.eventOf(
                {key.nativeScanCode(), key.nativeModifiers(), event->type() == QEvent::KeyPress, key.isAutoRepeat()});
            const auto handler = handler_;  // it may let go of itself
            return raw && handler(*raw);
        }
        default:
            return false;
    }
}

}  // namespace tavrelon::desktop
