#pragma once

#include <atomic>
#include <map>
#include <thread>

#include "support/clipboard_peer.h"

namespace tavrelon::testing {

/// A clipboard manager: asked to save, it fetches all targets from the clipboard's owner. In a thread of its own.
class ClipboardManager {
 public:
    enum class Manners { Saves, NeverAnswers };

    explicit ClipboardManager(Manners manners = Manners::Saves);
    /// What was saved; the manager is gone then.
    std::map<QString, QByteArray> stop();
    ~ClipboardManager();

 private:
    void run();
    void save();

    Manners manners_;
    ClipboardPeer peer_;
    std::map<QString, QByteArray> saved_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

}  // namespace tavrelon::testing
