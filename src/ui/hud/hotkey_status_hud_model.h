#pragma once

#include <QObject>
#include <QString>

#include "ui/hud/hud_look.h"

namespace tavrelon::ui {

/// What the hotkey status HUD shows, for its view to observe.
class HotkeyStatusHUDModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isEnabled READ isEnabled NOTIFY shown)
    Q_PROPERTY(QString text READ text NOTIFY shown)
    Q_PROPERTY(QString symbol READ symbol NOTIFY shown)
    Q_PROPERTY(int trigger READ trigger NOTIFY shown)

 public:
    /// Sets the state and raises `trigger`, which starts the view's animation.
    void show(bool enabled, HUDLanguage language = HUDLanguage::English) {
        isEnabled_ = enabled;
        language_ = language;
        ++trigger_;
        Q_EMIT shown();
    }

    bool isEnabled() const { return isEnabled_; }
    int trigger() const { return trigger_; }
    QString text() const {
        if (language_ == HUDLanguage::English)
            return isEnabled_ ? QStringLiteral("Hotkeys Enabled") : QStringLiteral("Hotkeys Disabled");
        return isEnabled_ ? QStringLiteral("快捷键已启用") : QStringLiteral("快捷键已禁用");
    }
    QString symbol() const { return isEnabled_ ? QStringLiteral("keyboard.fill") : QStringLiteral("keyboard"); }

    Q_SIGNAL void shown();

 private:
    bool isEnabled_ = true;
    HUDLanguage language_ = HUDLanguage::English;
    int trigger_ = 0;
};

}  // namespace tavrelon::ui
