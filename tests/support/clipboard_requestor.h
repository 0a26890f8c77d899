#pragma once

#include <optional>

#include "support/clipboard_peer.h"

namespace tavrelon::testing {

/// Another application that asks for the clipboard, step by step, so that a test can stop in the middle. One thread.
class ClipboardRequestor {
 public:
    static constexpr std::chrono::milliseconds patience{5000};

    /// Sends the request without waiting.
    void request(const QString& target, const QString& selection = QStringLiteral("CLIPBOARD"));

    /// Waits for the answer to it: the property, whose type is "INCR" where the data goes in increments. Absent when it
    /// was refused or nothing came.
    std::optional<ClipboardPeer::Property> answer();

    /// Waits for the next increment; an empty one is the end. Absent when none came.
    std::optional<QByteArray> nextIncrement(std::chrono::milliseconds limit = patience);

    /// The whole of a target; absent when it was refused, or not all came.
    std::optional<ClipboardPeer::Property> fetch(const QString& target);

    /// Several targets in one request; the ones that failed are absent.
    std::vector<std::optional<ClipboardPeer::Property>> fetchMultiple(const QStringList& targets);

    QStringList targets();

    /// Ends as a crash would.
    void disconnect() { peer_.disconnect(); }

 private:
    xcb_atom_t property() { return peer_.atom(QStringLiteral("TEST_TRANSFER")); }

    ClipboardPeer peer_;
};

}  // namespace tavrelon::testing
