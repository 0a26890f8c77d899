#pragma once

#include <QString>
#include <set>

#include "desktop/wayland/sway/sway_ipc.h"

namespace tavrelon::desktop {

/// A record, in the user's folder of this login, of the bindings that were made in sway, so that those of a process
/// that was killed can be removed. Main thread. Where there is no such folder nothing is recorded.
class SwayLeftOvers {
 public:
    /// Before the binding is made, so that there is none of which nobody knows.
    void remember(const QString& made);
    /// All that were remembered are gone.
    void forget();
    /// Removes those that an earlier process has left; what sway does not answer for stays in the record.
    static void remove(SwayIpc& ipc);

 private:
    std::set<QString> remembered_;
};

}  // namespace tavrelon::desktop
