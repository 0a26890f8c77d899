#pragma once

#include <QByteArray>
#include <QString>
#include <mutex>

#include "desktop/audio/vosk_library.h"

namespace tavrelon::desktop {

/// Keeps the model that was used last in memory, and knows one that could not be used. Any thread.
class VoskModels {
 public:
    /// The model in that folder as it is now, read unless it is the one that is kept. Takes seconds then, and other
    /// callers wait as long. Null when it cannot be used.
    VoskModelPtr model(const VoskLibrary& library, const QString& folder);

    /// Whether the folder holds what could not be used the last time. Returns at once.
    bool isUnusable(const QString& folder) const;

    /// Frees the model, once the recognitions that use it have ended. May take a moment.
    void giveBack();

 private:
    void keep(VoskModelPtr model, const QByteArray& content);

    std::mutex reading_;        // held as long as a model is read
    mutable std::mutex mutex_;  // guards what follows
    QByteArray content_;        ///< of the folder that was read last
    VoskModelPtr model_;
};

}  // namespace tavrelon::desktop
