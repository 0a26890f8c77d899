#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>

namespace tavrelon::testing {

/// How an application treats its field.
enum class Manners {
    Honest,
    Lies,           ///< says that it deleted and inserted, and does neither
    LosesOnce,      ///< deletes, but drops the first text that is inserted
    LosesAlways,    ///< drops every text that is inserted; the whole text can still be set
    LosesForGood,   ///< drops whatever is written to it
    MuteReading,    ///< does not answer when asked for its text
    MuteInserting,  ///< does not answer when told to insert
    Garbled,        ///< answers with a number when asked for its text
    Password,
    WithoutText,     ///< the field is an element of another sort
    WithoutEditing,  ///< text that can only be read
};

/// An application on the accessibility bus without a window: a frame with two fields and, before them, a menu and a
/// hidden part that each claim to hold the focus. A program of its own, see main.
///   fake_accessible_app MANNERS TOOLKIT TEXT START END
class FakeAccessibleApp : public QDBusVirtualObject {
    Q_OBJECT

 public:
    FakeAccessibleApp(Manners manners, QString toolkit, const QString& text, int start, int end);

    /// Enters itself in the registry and says that the first field has the focus.
    bool join(QDBusConnection bus);

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    static constexpr auto firstField = "/org/a11y/atspi/accessible/field1";
    static constexpr auto secondField = "/org/a11y/atspi/accessible/field2";
    static constexpr auto control =
        "/control";  ///< interface "test.Control": Text, Calls, Focus, Say, Speak, Deactivate, Claim

 private:
    using Units = QList<uint>;  // code points or UTF-16 units, as the toolkit counts

    std::optional<QVariantList> controlled(const QDBusMessage& message);
    std::optional<QVariantList> element(const QString& path, const QDBusMessage& message);
    std::optional<QVariantList> textOf(const QDBusMessage& message);
    std::optional<QVariantList> edit(const QDBusMessage& message);
    std::optional<QVariantList> property(const QDBusMessage& message) const;
    QList<uint> statesOf(const QString& path) const;
    uint roleOf(const QString& path) const;
    QStringList interfacesOf(const QString& path) const;
    bool insert(int at, const QString& text, int length);
    bool remove(int start, int end);
    bool isMute(const QString& method) const;
    void speak();
    void say(const QString& path, int gained);
    bool countsUtf16() const { return toolkit_ == QLatin1String("Qt"); }
    Units unitsOf(const QString& text) const;
    QString stringOf(const Units& units) const;

    Manners manners_;
    QString toolkit_;
    Units text_;
    int start_;
    int end_;
    QString focused_ = QLatin1String(firstField);
    QStringList calls_;
    QList<QDBusMessage> unanswered_;
    bool active_ = true;        // the frame is the one that the user works in
    bool framesClaim_ = false;  // the frame says that it has the focus of what is in it
    bool spoken_ = false;       // a mute one has found its voice
    int dropped_ = 0;
    QDBusConnection bus_{QString()};
};

}  // namespace tavrelon::testing
