#include "desktop/x11/selection/x11_selection_codec.h"

#include <QSet>
#include <algorithm>

namespace tavrelon::desktop {

namespace {

const QString utf8String = QStringLiteral("UTF8_STRING");
const QString utf8Plain = QStringLiteral("text/plain;charset=utf-8");
const QString plain = QStringLiteral("text/plain");
const QString latin1String = QStringLiteral("STRING");
const QString anyText = QStringLiteral("TEXT");

/// Control characters pass, although the inter-client conventions allow two of them only: every toolkit lets them.
bool fitsLatin1(const QString& text) {
    return std::ranges::all_of(text, [](QChar character) { return character.unicode() <= 0xff; });
}

/// text/plain without a charset is what the owner's locale says: UTF-8 nearly everywhere, Latin-1 before that.
QString decodeUnmarked(const QByteArray& bytes) {
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

}  // namespace

bool isMetaTarget(const QString& target) {
    static const QSet<QString> names{
        QStringLiteral("TARGETS"), QStringLiteral("TIMESTAMP"), QStringLiteral("MULTIPLE"),
        QStringLiteral("SAVE_TARGETS"), QStringLiteral("DELETE"), QStringLiteral("INSERT_PROPERTY"),
        QStringLiteral("INSERT_SELECTION"),
        // About the owner.
        QStringLiteral("HOST_NAME"), QStringLiteral("HOSTNAME"), QStringLiteral("IP_ADDRESS"),
        QStringLiteral("DECNET_ADDRESS"), QStringLiteral("OWNER_OS"), QStringLiteral("USER"), QStringLiteral("PROCESS"),
        QStringLiteral("TASK"), QStringLiteral("CLASS"), QStringLiteral("NAME"), QStringLiteral("CLIENT_WINDOW"),
        QStringLiteral("LENGTH"), QStringLiteral("LIST_LENGTH"), QStringLiteral("CHARACTER_POSITION"),
        QStringLiteral("LINE_NUMBER"), QStringLiteral("COLUMN_NUMBER"),
        // An address in the owner's memory.
        QStringLiteral("GTK_TEXT_BUFFER_CONTENTS")};
    return names.contains(target) || target.startsWith(QStringLiteral("INSERT_"));
}

const QStringList& textTargets() {
    static const QStringList targets{utf8String, utf8Plain, latin1String, plain, anyText};
    return targets;
}

std::optional<QString> decodeText(const QString& type, const QByteArray& bytes) {
    auto end = bytes.size();
    while (end > 0 && bytes[end - 1] == '\0')
        --end;
    const QByteArray text = bytes.first(end);
    if (type == utf8String || type.compare(utf8Plain, Qt::CaseInsensitive) == 0)
        return QString::fromUtf8(text);
    if (type == latin1String)
        return QString::fromLatin1(text);
    if (type == plain || type == anyText)
        return decodeUnmarked(text);
    return std::nullopt;
}

std::optional<SelectionData> encodeText(const QString& target, const QString& text) {
    if (target == latin1String) {
        if (!fitsLatin1(text))
            return std::nullopt;
        return SelectionData{.type = latin1String, .format = 8, .bytes = text.toLatin1()};
    }
    if (target == anyText)  // the owner chooses the type
        return SelectionData{.type = utf8String, .format = 8, .bytes = text.toUtf8()};
    if (target == utf8String || target == plain || target.compare(utf8Plain, Qt::CaseInsensitive) == 0)
        return SelectionData{.type = target, .format = 8, .bytes = text.toUtf8()};
    return std::nullopt;
}

SelectionContent::SelectionContent(platform::PasteboardItem item, SelectionForms forms)
    : item_(std::move(item)), forms_(std::move(forms)) {
    for (const auto& target : textTargets()) {
        const auto* bytes = stored(target);
        if (!bytes)
            continue;
        text_ = decodeText(forms_.contains(target) ? forms_[target].type : target, *bytes);
        if (text_)
            return;
    }
}

const QByteArray* SelectionContent::stored(const QString& target) const {
    for (const auto& [type, bytes] : item_.dataByType) {
        if (type == target)
            return &bytes;
    }
    return nullptr;
}

std::vector<QString> SelectionContent::targets() const {
    std::vector<QString> names;
    for (const auto& entry : item_.dataByType)
        names.push_back(entry.first);
    if (!text_)
        return names;
    for (const auto& target : textTargets()) {
        if (!stored(target) && encodeText(target, *text_))
            names.push_back(target);
    }
    return names;
}

std::optional<SelectionData> SelectionContent::dataFor(const QString& target) const {
    if (const auto* bytes = stored(target)) {
        const auto form = forms_.value(target, {.type = target, .format = 8});
        const bool wholeUnits = bytes->size() % (form.format / 8) == 0;
        return SelectionData{.type = form.type, .format = wholeUnits ? form.format : 8, .bytes = *bytes};
    }
    return text_ ? encodeText(target, *text_) : std::nullopt;
}

QByteArray IncrementSource::next(qsizetype limit) {
    const auto unit = data_.format / 8;
    const auto length = std::min(data_.bytes.size() - offset_, limit - limit % unit);
    ended_ = length == 0;
    offset_ += length;
    return data_.bytes.sliced(offset_ - length, length);
}

std::vector<MultiplePair> decodeMultiple(const std::vector<std::uint32_t>& atoms) {
    std::vector<MultiplePair> pairs;
    for (std::size_t i = 0; i + 1 < atoms.size(); i += 2)
        pairs.push_back({.target = atoms[i], .property = atoms[i + 1]});
    return pairs;
}

std::vector<std::uint32_t> encodeMultiple(const std::vector<MultiplePair>& pairs) {
    std::vector<std::uint32_t> atoms;
    for (const auto& pair : pairs) {
        atoms.push_back(pair.target);
        atoms.push_back(pair.property);
    }
    return atoms;
}

}  // namespace tavrelon::desktop
