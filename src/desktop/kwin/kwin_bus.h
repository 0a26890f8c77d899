#pragma once

#include <QDBusConnection>
#include <QVariantList>
#include <chrono>
#include <expected>
#include <memory>
#include <optional>

namespace tavrelon::desktop {

/// A connection of its own with the session bus, on which KWin is asked. Main thread.
class KWinBus {
 public:
    /// What one call may cost its caller.
    static constexpr std::chrono::milliseconds callLimit{250};
    /// The same for what the session is not served without, at a login, when everything starts at once.
    static constexpr std::chrono::milliseconds startLimit{5000};

    struct Address {
        QString service;
        QString path;
        QString interface;
    };

    /// The error is a sentence for the log.
    static std::expected<std::shared_ptr<KWinBus>, QString> open();
    KWinBus(const KWinBus&) = delete;
    KWinBus& operator=(const KWinBus&) = delete;
    ~KWinBus();

    /// What the call returns; absent where it fails or is not answered in time.
    std::optional<QVariantList> call(const Address& address, const QString& method, const QVariantList& arguments = {},
                                     std::chrono::milliseconds limit = callLimit);

    /// The unique name of a service; empty where nobody has it.
    QString ownerOf(const QString& service);

    QDBusConnection& connection() { return connection_; }

 private:
    KWinBus(QString name, QDBusConnection connection) : name_(std::move(name)), connection_(std::move(connection)) {}

    QString name_;
    QDBusConnection connection_;
};

}  // namespace tavrelon::desktop
