#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/pasteboard.h"

/// What selection owners and requestors say to each other, as values: no connection, no window. Targets and types are
/// atom names. Any thread.
namespace tavrelon::desktop {

/// A property as it goes over the wire. `format` is the size of one unit in bits: 8, 16 or 32.
struct SelectionData {
    QString type;
    int format = 8;
    QByteArray bytes;
    bool operator==(const SelectionData&) const = default;
};

/// The type and format under which another owner gave a target, so that we can give it back in the same way.
struct SelectionForm {
    QString type;
    int format = 8;
};
using SelectionForms = QHash<QString, SelectionForm>;

/// Whether a target tells about the transfer or the owner instead of the content, or means something inside of its
/// owner only.
bool isMetaTarget(const QString& target);

/// The text targets in the order in which a reader should try them.
const QStringList& textTargets();

/// The text in a property of a text type; absent for other types. Trailing NULs, which some owners add, are cut.
std::optional<QString> decodeText(const QString& type, const QByteArray& bytes);

/// The text in the form that a text target asks for; absent where the target is no text target or, for Latin-1, cannot
/// hold this text exactly.
std::optional<SelectionData> encodeText(const QString& target, const QString& text);

/// What we offer on the selection: one item's own types, and every text target that can be made of its text.
class SelectionContent {
 public:
    SelectionContent() = default;
    explicit SelectionContent(platform::PasteboardItem item, SelectionForms forms = {});

    const platform::PasteboardItem& item() const { return item_; }
    const std::optional<QString>& text() const { return text_; }
    bool isEmpty() const { return item_.dataByType.empty(); }

    /// The content's targets, without the meta ones, in the order of offering.
    std::vector<QString> targets() const;
    std::optional<SelectionData> dataFor(const QString& target) const;

 private:
    const QByteArray* stored(const QString& target) const;

    platform::PasteboardItem item_;
    SelectionForms forms_;
    std::optional<QString> text_;
};

/// Cuts data into increments; after the last one comes an empty one, which tells the requestor that it has all.
class IncrementSource {
 public:
    explicit IncrementSource(SelectionData data) : data_(std::move(data)) {}

    const SelectionData& data() const { return data_; }
    /// The next increment, of at most `limit` bytes and whole units. Empty once all was given.
    QByteArray next(qsizetype limit);
    bool ended() const { return ended_; }

 private:
    SelectionData data_;
    qsizetype offset_ = 0;
    bool ended_ = false;
};

/// One conversion asked for by MULTIPLE: a target and the property to put it in.
struct MultiplePair {
    std::uint32_t target = 0;
    std::uint32_t property = 0;
    bool operator==(const MultiplePair&) const = default;
};

/// The pairs in the parameter of MULTIPLE; an odd atom at the end is left out.
std::vector<MultiplePair> decodeMultiple(const std::vector<std::uint32_t>& atoms);

/// The atoms of the same parameter after the conversions: the property of a pair that failed is 0.
std::vector<std::uint32_t> encodeMultiple(const std::vector<MultiplePair>& pairs);

}  // namespace tavrelon::desktop
