#include "support/stand_in_input_method.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <mutex>
#include <stdexcept>

namespace tavrelon::testing {

namespace {

/// The begin of IBus's description of an engine.
QVariant engineDescription(const QString& name) {
    QDBusArgument description;
    description.beginStructure();
    description << QStringLiteral("IBusEngineDesc") << QVariantMap{} << name << QStringLiteral("long name");
    description.endStructure();
    const auto property = QVariant::fromValue(QDBusVariant(QVariant::fromValue(description)));
    return QVariant::fromValue(QDBusVariant(property));
}

}  // namespace

class StandInInputMethod::Service : public QDBusVirtualObject {
 public:
    explicit Service(Framework framework) : framework_(framework) {}

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const std::lock_guard lock(mutex_);
        if (hangs_) {
            message.setDelayedReply(true);
            return true;
        }
        const bool isFcitx = framework_ == Framework::Fcitx;
        if (message.member() != (isFcitx ? QStringLiteral("CurrentInputMethod") : QStringLiteral("Get")))
            return false;
        return connection.send(message.createReply(isFcitx ? QVariant(method_) : engineDescription(method_)));
    }

    void set(std::optional<QString> method, std::optional<bool> hangs) {
        const std::lock_guard lock(mutex_);
        method_ = method.value_or(method_);
        hangs_ = hangs.value_or(hangs_);
    }

    bool serve() {
        const bool isFcitx = framework_ == Framework::Fcitx;
        auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName());
        return bus.registerVirtualObject(
                   isFcitx ? QStringLiteral("/controller") : QStringLiteral("/org/freedesktop/IBus"), this) &&
               takeName(bus);
    }

    void end() {
        // The bus notices the end of a connection later, and the next stand-in wants the name.
        QDBusConnection(connectionName()).unregisterService(busName());
        QDBusConnection::disconnectFromBus(connectionName());
    }

 private:
    /// The one before us may still have it: the bus hears of the end of a connection later.
    bool takeName(QDBusConnection& bus) {
        for (int attempt = 0; attempt < 200; ++attempt) {
            if (bus.registerService(busName()))
                return true;
            QThread::msleep(10);
        }
        return false;
    }
    /// Its own for each stand-in: Qt hands out a connection that is just ending under the same name.
    QString connectionName() const {
        return QStringLiteral("stand-in-input-method-%1").arg(reinterpret_cast<quintptr>(this));
    }
    QString busName() const {
        return framework_ == Framework::Fcitx ? QStringLiteral("org.fcitx.Fcitx5")
                                              : QStringLiteral("org.freedesktop.IBus");
    }

    Framework framework_;
    std::mutex mutex_;
    QString method_;
    bool hangs_ = false;
};

StandInInputMethod::StandInInputMethod(Framework framework) : service_(std::make_unique<Service>(framework)) {
    thread_.start();
    service_->moveToThread(&thread_);
    bool serves = false;
    QMetaObject::invokeMethod(service_.get(), [&] { serves = service_->serve(); }, Qt::BlockingQueuedConnection);
    if (!serves) {
        end();
        throw std::runtime_error("the session bus does not let the stand-in serve");
    }
}

StandInInputMethod::~StandInInputMethod() {
    end();
}

void StandInInputMethod::end() {
    QMetaObject::invokeMethod(service_.get(), [this] { service_->end(); }, Qt::BlockingQueuedConnection);
    thread_.quit();
    thread_.wait();
}

void StandInInputMethod::use(const QString& method) {
    service_->set(method, std::nullopt);
}

void StandInInputMethod::hang(bool hangs) {
    service_->set(std::nullopt, hangs);
}

}  // namespace tavrelon::testing
