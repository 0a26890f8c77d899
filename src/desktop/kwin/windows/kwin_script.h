#pragma once

#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <expected>
#include <functional>
#include <memory>

#include "desktop/kwin/kwin_bus.h"

namespace tavrelon::desktop {

/// A script that runs within KWin and tells of windows, which KWin does for no other program. Main thread.
class KWinScript : public QDBusVirtualObject {
 public:
    struct Calls {
        /// The window in front is another, or has another title or place; as of `windowIn`.
        std::function<void(const QString& told)> active;
        std::function<void(const QString& identifier)> gone;
    };

    /// Loads it; a KWin that is started anew gets it anew. The error is a sentence for the log.
    static std::expected<std::unique_ptr<KWinScript>, QString> start(std::shared_ptr<KWinBus> bus, Calls calls);
    /// Ends it.
    ~KWinScript() override;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
    KWinScript(std::shared_ptr<KWinBus> bus, Calls calls);
    bool load();

    std::shared_ptr<KWinBus> bus_;
    Calls calls_;
    QString owner_;  ///< KWin on the bus: nobody else is listened to
    QDBusServiceWatcher watcher_;
};

}  // namespace tavrelon::desktop
