#pragma once

#include <QProcess>
#include <QTemporaryDir>
#include <functional>
#include <memory>

#include "support/eventually.h"
#include "support/stand_in_service.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::testing {

/// The program itself, started as its user would start it, with a model service of the test's own.
class RunningTavrelon {
 public:
    /// How it finds its user's folders.
    struct Setting {
        text::Json settings = text::Json::object();                        ///< beside those that name the service
        std::function<void(const QString& applicationSupport)> install{};  ///< puts files there
    };

    /// Starts it and waits until it listens. Throws when it does not.
    explicit RunningTavrelon(StandInService& service) : RunningTavrelon(service, Setting()) {}
    RunningTavrelon(StandInService& service, const Setting& setting);
    ~RunningTavrelon();

    QString log() const;
    int logged(const QString& line) const;
    bool waitForLog(const QString& line, int times);

    qint64 process() const { return process_.processId(); }

    /// How many requests the history holds on disk.
    int historyCount() const;
    QString newestHistoryId() const;

    /// Ends it as a logout would, and gives its exit status.
    int terminate();

 private:
    QTemporaryDir home_;
    mutable QProcess process_;
};

/// A real editor with one file open. It has the focus when the constructor returns.
class RunningEditor {
 public:
    enum class Kind { Mousepad, Featherpad };

    RunningEditor(Kind kind, XTestKeyboard& keyboard, const QString& text);
    ~RunningEditor();

    /// Saves and gives what the file holds; waits for `expected` and gives what is there when it does not come.
    QString saved(const QString& expected);

    /// Replaces all the text, with the caret before the last `after` characters.
    void refill(const QString& text, int after);

    /// Types characters of a US keyboard; what it lacks is pasted.
    void type(const QString& text);
    void paste(const QString& text);

    void signal(int number) const;

 private:
    QTemporaryDir folder_;
    QString path_;
    XTestKeyboard& keyboard_;
    QProcess process_;
};

/// Puts a text on the clipboard, owned by another program.
void setClipboard(const QString& text);

/// The pause of a person between two thoughts. Editors take keys in their own time, and Qt sends typed keys on a detour
/// over the accessibility bus but shortcuts not, so that a shortcut on the heels of a key overtakes it.
void letKeysArrive();

void pressToggleHotkey(XTestKeyboard& keyboard);

}  // namespace tavrelon::testing
