#include "text/foreign_text.h"

#include <QList>
#include <algorithm>
#include <vector>

#include "text/characters.h"

namespace tavrelon::text {

namespace {

/// A character may be made of marks without end; on average it gets no more than this, in UTF-16 units.
constexpr qsizetype unitsOfCharacter = 8;

bool isDroppedControl(QChar unit) {
    return unit.category() == QChar::Other_Control && unit != u'\n' && unit != u'\t';
}

bool endsLineOrCell(char32_t scalar) {
    const auto category = QChar::category(scalar);
    return (category == QChar::Other_Control && QChar::isSpace(scalar)) || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

enum class Bidi { None, Opens, Isolates, Closes, ClosesIsolate };

Bidi bidiOf(QChar unit) {
    switch (unit.unicode()) {
        case 0x202A:
        case 0x202B:
        case 0x202D:
        case 0x202E:
            return Bidi::Opens;
        case 0x202C:
            return Bidi::Closes;
        case 0x2066:
        case 0x2067:
        case 0x2068:
            return Bidi::Isolates;
        case 0x2069:
            return Bidi::ClosesIsolate;
        default:
            return Bidi::None;
    }
}

/// Finds the bidirectional controls of a text that have no counterpart in their line.
class LooseBidi {
 public:
    std::vector<qsizetype> in(const QString& text) {
        for (qsizetype at = 0; at < text.size(); ++at)
            visit(text.at(at), at);
        endLine();
        std::ranges::sort(loose_);
        return std::move(loose_);
    }

 private:
    struct Open {
        Bidi kind;
        qsizetype at;
    };

    void visit(QChar unit, qsizetype at) {
        const auto kind = bidiOf(unit);
        if (unit == u'\n' || unit.category() == QChar::Separator_Paragraph)
            endLine();
        else if (kind == Bidi::Opens || kind == Bidi::Isolates)
            open_.push_back({kind, at});
        else if (kind == Bidi::Closes)
            close(Bidi::Opens, at);
        else if (kind == Bidi::ClosesIsolate)
            closeIsolate(at);
    }

    void close(Bidi kind, qsizetype at) {
        if (open_.empty() || open_.back().kind != kind)
            loose_.push_back(at);
        else
            open_.pop_back();
    }

    /// The end of an isolate also ends what is open within it.
    void closeIsolate(qsizetype at) {
        if (std::ranges::find(open_, Bidi::Isolates, &Open::kind) != open_.end())
            for (; open_.back().kind != Bidi::Isolates; open_.pop_back())
                loose_.push_back(open_.back().at);
        close(Bidi::Isolates, at);
    }

    void endLine() {
        for (const auto& opened : open_)
            loose_.push_back(opened.at);
        open_.clear();
    }

    std::vector<Open> open_;
    std::vector<qsizetype> loose_;
};

}  // namespace

QString withoutControls(const QString& text) {
    QString kept = text;
    return kept.removeIf(isDroppedControl);
}

QString oneLine(const QString& text, qsizetype characters) {
    QString line;
    for (const char32_t scalar : text.left(2 * unitsOfCharacter * characters).toUcs4()) {
        const auto category = QChar::category(scalar);
        if (endsLineOrCell(scalar))
            line += u' ';
        else if (category != QChar::Other_Control && category != QChar::Other_Format)
            line += QString::fromUcs4(&scalar, 1);
    }
    line = prefixOfCharacters(line, characters).left(unitsOfCharacter * characters);
    if (!line.isEmpty() && line.back().isHighSurrogate())
        line.chop(1);
    return line;
}

QString writableAnswer(const QString& text) {
    auto kept = withoutControls(text);
    const auto loose = LooseBidi().in(kept);
    for (auto at = loose.rbegin(); at != loose.rend(); ++at)
        kept.remove(*at, 1);
    return kept;
}

}  // namespace tavrelon::text
