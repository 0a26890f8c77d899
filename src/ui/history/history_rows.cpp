#include "ui/history/history_rows.h"

#include <QDateTime>

#include "text/characters.h"
#include "text/pieces.h"
#include "ui/history/history_texts.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
using persistence::HistoryEntry;
using Kind = HistoryPieceRow::Kind;

namespace {

constexpr qsizetype previewLength = 50;  // characters

enum AppRole { AppId = Qt::UserRole, DisplayName, Count, LatestTime, Preview };
enum PieceRole {
    RowKind = Qt::UserRole,
    Time,
    Badges,
    MessageRole,
    Label,
    IsFirst,
    IsLast,
    PieceText,
    ImageSource,
    ImagePixels,
};

QString preview(const QString& input) {
    const auto beginning = text::prefixOfCharacters(input, previewLength);
    return beginning.size() < input.size() ? beginning + "..."_L1 : beginning;
}

std::vector<HistoryBadge> badgesOf(const HistoryEntry& entry, text::Language language) {
    std::vector<HistoryBadge> badges;
    if (entry.wasReverted)
        badges.push_back({history_texts::reverted.in(language), u"arrow.uturn.backward"_s, u"orange"_s});
    if (entry.wasEdited)
        badges.push_back({history_texts::edited.in(language), u"pencil"_s, u"blue"_s});
    if (entry.retryCount > 0)
        badges.push_back(
            {history_texts::retried.in(language).arg(entry.retryCount), u"arrow.clockwise"_s, u"purple"_s});
    return badges;
}

QVariantList variants(const std::vector<HistoryBadge>& badges) {
    QVariantList list;
    for (const auto& badge : badges)
        list << QVariantMap{{u"text"_s, badge.text}, {u"symbol"_s, badge.symbol}, {u"tint"_s, badge.tint}};
    return list;
}

QString roleName(HistoryMessageRole role) {
    switch (role) {
        case HistoryMessageRole::User:
            return u"user"_s;
        case HistoryMessageRole::Assistant:
            return u"assistant"_s;
        case HistoryMessageRole::Edited:
            return u"edited"_s;
    }
    return {};
}

QString labelOf(HistoryMessageRole role, text::Language language) {
    switch (role) {
        case HistoryMessageRole::User:
            return history_texts::userLabel.in(language);
        case HistoryMessageRole::Assistant:
            return history_texts::assistantLabel.in(language);
        case HistoryMessageRole::Edited:
            return history_texts::editedLabel.in(language);
    }
    return {};
}

/// Appends the bubble of one message, piece by piece.
void addBubble(std::vector<HistoryPieceRow>& rows, const HistoryEntry& entry, HistoryMessageRole role,
               const QString& messageText, text::Language language, std::optional<HistoryImage> image) {
    const auto first = rows.size();
    HistoryPieceRow piece{.kind = Kind::Bubble,
                          .entry = entry.id,
                          .time = {},
                          .badges = {},
                          .role = role,
                          .label = labelOf(role, language),
                          .isFirst = false,
                          .isLast = false,
                          .text = {},
                          .image = {}};
    const bool imageStandsAlone =
        image && (messageText.isEmpty() || text::trimmed(messageText) == history_texts::imageCopied);
    if (!imageStandsAlone)
        for (auto& part : text::piecesOf(messageText)) {
            piece.text = std::move(part);
            rows.push_back(piece);
        }
    if (image) {
        piece.text = imageStandsAlone ? messageText : QString();
        piece.image = std::move(image);
        rows.push_back(std::move(piece));
    }
    rows[first].isFirst = true;
    rows.back().isLast = true;
}

}  // namespace

QHash<int, QByteArray> HistoryAppRow::roleNames() {
    return {{AppId, "appId"},
            {DisplayName, "displayName"},
            {Count, "count"},
            {LatestTime, "latestTime"},
            {Preview, "preview"}};
}

QVariant HistoryAppRow::value(int role) const {
    switch (role) {
        case AppId:
            return id;
        case DisplayName:
            return displayName;
        case Count:
            return count;
        case LatestTime:
            return latestTime;
        case Preview:
            return preview;
        default:
            return {};
    }
}

QHash<int, QByteArray> HistoryPieceRow::roleNames() {
    return {{RowKind, "kind"},           {Time, "time"},           {Badges, "badges"},
            {MessageRole, "role"},       {Label, "label"},         {IsFirst, "isFirst"},
            {IsLast, "isLast"},          {PieceText, "pieceText"}, {ImageSource, "imageSource"},
            {ImagePixels, "imagePixels"}};
}

QVariant HistoryPieceRow::value(int wanted) const {
    switch (wanted) {
        case RowKind:
            return kind == Kind::TurnHead ? u"turnHead"_s : u"bubble"_s;
        case Time:
            return time;
        case Badges:
            return variants(badges);
        case MessageRole:
            return roleName(role);
        case Label:
            return label;
        case IsFirst:
            return isFirst;
        case IsLast:
            return isLast;
        case PieceText:
            return text;
        case ImageSource:
            return image ? image->source : QUrl();
        case ImagePixels:
            return image ? image->pixels : QSize(0, 0);
        default:
            return {};
    }
}

QString entryCountText(std::size_t count, text::Language language) {
    return count == 1 ? history_texts::oneEntry.in(language) : history_texts::entries.in(language).arg(count);
}

QString shortTimeText(std::chrono::system_clock::time_point time, const QLocale& locale) {
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return locale.toString(QDateTime::fromMSecsSinceEpoch(sinceEpoch.count()), QLocale::ShortFormat);
}

HistoryAppRow appRow(const AppHistoryGroup& group, const QLocale& locale, text::Language language) {
    return {group.id, group.displayName, entryCountText(group.entries.size(), language),
            shortTimeText(group.latest().timestamp, locale), preview(group.latest().inputText)};
}

std::vector<HistoryPieceRow> conversationRows(const AppHistoryGroup& group, const QLocale& locale,
                                              text::Language language, const HistoryImageFinder& findImage) {
    std::vector<HistoryPieceRow> rows;
    for (const auto& entry : group.entries) {
        HistoryPieceRow head;
        head.entry = entry.id;
        head.time = shortTimeText(entry.timestamp, locale);
        head.badges = badgesOf(entry, language);
        rows.push_back(std::move(head));
        addBubble(rows, entry, HistoryMessageRole::User, entry.inputText, language, std::nullopt);
        const auto& path = entry.outputImagePath;
        addBubble(rows, entry, HistoryMessageRole::Assistant, entry.outputText, language,
                  path && !path->isEmpty() ? findImage(*path) : std::nullopt);
        if (entry.editedText && !entry.editedText->isEmpty())
            addBubble(rows, entry, HistoryMessageRole::Edited, *entry.editedText, language, std::nullopt);
    }
    return rows;
}

}  // namespace tavrelon::ui
