#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <expected>
#include <optional>
#include <utility>
#include <vector>

#include "async/task.h"

namespace tavrelon::platform {

/// One thing on the pasteboard, in every form in which it was offered, in the order of offering. A type is the
/// platform's own name of the form (a MIME type or a selection target).
struct PasteboardItem {
    std::vector<std::pair<QString, QByteArray>> dataByType;
    bool operator==(const PasteboardItem&) const = default;
};

enum class PasteboardError {
    TimedOut,  ///< the owner did not answer within the bound
    TooLarge,  ///< more than the adapter's cap
    Failed,
};

/// The general pasteboard. Main thread. Reads ask another application and therefore wait, for a bounded time; what we
/// put there ourselves is served for as long as nobody else takes it.
class Pasteboard {
 public:
    virtual ~Pasteboard() = default;

    /// Grows with every change of the pasteboard's content, by whomever.
    virtual std::int64_t changeCount() = 0;

    /// Everything on the pasteboard; an empty list when there is nothing. Forms that are too large or too slow are left
    /// out as long as a text is kept as text and a picture as a picture.
    virtual async::Task<std::expected<std::vector<PasteboardItem>, PasteboardError>> items() = 0;

    /// The text on the pasteboard; absent when there is none or its owner does not answer in time.
    virtual async::Task<std::optional<QString>> string() = 0;

    /// Whether the program with the keyboard focus has fetched what we put there last. Clipboard managers, which do so
    /// on their own, do not count.
    virtual bool wasFetched() = 0;

    virtual void clearContents() = 0;

    /// Puts the text there. False when the pasteboard could not be taken; what is on it then is another's.
    virtual bool setString(const QString& text) = 0;

    /// Puts the items there, each with all its types, under the same rule. A platform that knows one item only offers
    /// the first.
    virtual bool writeItems(std::vector<PasteboardItem> items) = 0;
};

}  // namespace tavrelon::platform
