#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "desktop/kwin/kwin_bus.h"

namespace tavrelon::desktop {

/// KGlobalAccel, which holds the shortcuts of the whole session, as far as ours go there: one component with an action
/// for each hotkey. Main thread; every call is bounded by `KWinBus::callLimit`.
class GlobalAccel {
 public:
    static inline const QString service = QStringLiteral("org.kde.kglobalaccel");
    /// Where presses and releases of our actions are told.
    static inline const KWinBus::Address component{.service = service,
                                                   .path = QStringLiteral("/component/tavrelon"),
                                                   .interface = QStringLiteral("org.kde.kglobalaccel.Component")};

    enum class Outcome : std::uint8_t { Held, Taken, NoAnswer };

    explicit GlobalAccel(std::shared_ptr<KWinBus> bus);

    bool isThere();
    /// All of the keys or none: where another holds one of them nothing is changed.
    Outcome hold(const QString& action, const QString& friendlyName, const std::vector<int>& keys);
    /// The keys are the applications' again. False where nobody answers.
    bool letGo(const QString& action);
    /// The same for all that are known of us, those of a process that was killed among them.
    void letGoOfAll();
    /// Whether neither we nor another holds the key; so it is where nobody answers.
    bool isFree(int key);

 private:
    std::shared_ptr<KWinBus> bus_;
};

}  // namespace tavrelon::desktop
