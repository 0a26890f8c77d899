#pragma once

#include <QObject>
#include <QString>
#include <QUuid>
#include <functional>

namespace tavrelon::ui {

/// What the prompt box shows and what the user typed into it, for its view to observe and to fill.
class FloatingInputModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool isEnglish READ isEnglish NOTIFY isEnglishChanged)
    Q_PROPERTY(QUuid focusToken READ focusToken NOTIFY focusTokenChanged)

 public:
    QString text() const { return text_; }
    void setText(const QString& text) {
        if (text == text_)
            return;
        text_ = text;
        Q_EMIT textChanged();
    }

    bool isEnglish() const { return isEnglish_; }
    void setIsEnglish(bool isEnglish) {
        isEnglish_ = isEnglish;
        Q_EMIT isEnglishChanged();
    }

    /// A new value asks the view to take the focus.
    QUuid focusToken() const { return focusToken_; }
    void renewFocusToken() {
        focusToken_ = QUuid::createUuid();
        Q_EMIT focusTokenChanged();
    }

    // What the view calls for the Return and the Escape key.
    Q_INVOKABLE void submit() { onSubmit(); }
    Q_INVOKABLE void cancel() { onCancel(); }
    std::function<void()> onSubmit = [] {};
    std::function<void()> onCancel = [] {};

    Q_SIGNAL void textChanged();
    Q_SIGNAL void isEnglishChanged();
    Q_SIGNAL void focusTokenChanged();

 private:
    QString text_;
    bool isEnglish_ = true;
    QUuid focusToken_ = QUuid::createUuid();
};

}  // namespace tavrelon::ui
