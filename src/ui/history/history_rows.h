#pragma once

#include <QHash>
#include <QLocale>
#include <QSize>
#include <QUrl>
#include <QVariant>
#include <functional>

#include "ui/history/history_groups.h"
#include "ui/history/history_texts.h"

namespace tavrelon::ui {

/// An application in the list.
struct HistoryAppRow {
    QString id;
    QString displayName;
    QString count;
    QString latestTime;
    QString preview;  ///< the beginning of the latest input

    bool operator==(const HistoryAppRow&) const = default;
    static QHash<int, QByteArray> roleNames();
    QVariant value(int role) const;
};

enum class HistoryMessageRole : std::uint8_t { User, Assistant, Edited };

/// What befell a request.
struct HistoryBadge {
    QString text;
    QString symbol;
    QString tint;  ///< the name of a colour of the theme

    bool operator==(const HistoryBadge&) const = default;
};

/// A picture that is there and has a size.
struct HistoryImage {
    QUrl source;
    QSize pixels;

    bool operator==(const HistoryImage&) const = default;
};

/// A part of a conversation that is drawn by itself: the head of a turn, or one piece of a bubble. A bubble is drawn in
/// pieces, so that a long text costs no more at a time than a short one.
struct HistoryPieceRow {
    enum class Kind : std::uint8_t { TurnHead, Bubble };

    Kind kind = Kind::TurnHead;
    QUuid entry;
    QString time;                      ///< of a head
    std::vector<HistoryBadge> badges;  ///< of a head
    HistoryMessageRole role = HistoryMessageRole::User;
    QString label = {};   ///< who says it
    bool isFirst = true;  ///< the piece that has the label above it and the upper corners
    bool isLast = true;
    QString text;
    std::optional<HistoryImage>
        image;  ///< stands alone, without a text; `text` says what to show if it cannot be drawn

    bool operator==(const HistoryPieceRow&) const = default;
    static QHash<int, QByteArray> roleNames();
    QVariant value(int role) const;
};

/// Gives the picture of a path as an entry names it; nothing where it cannot be read.
using HistoryImageFinder = std::function<std::optional<HistoryImage>(const QString& outputImagePath)>;

QString entryCountText(std::size_t count, text::Language language);
QString shortTimeText(std::chrono::system_clock::time_point time, const QLocale& locale);
HistoryAppRow appRow(const AppHistoryGroup& group, const QLocale& locale, text::Language language);

/// The conversation of a group, from top to bottom.
std::vector<HistoryPieceRow> conversationRows(const AppHistoryGroup& group, const QLocale& locale,
                                              text::Language language, const HistoryImageFinder& findImage);

}  // namespace tavrelon::ui
