#include "fuzz/fuzz_targets_desktop.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <ranges>

#include "desktop/applications/application_identifiers.h"
#include "desktop/atspi/field_repair.h"
#include "desktop/atspi/field_text.h"
#include "desktop/documents/picture_pixels.h"
#include "desktop/x11/selection/x11_selection_codec.h"
#include "desktop/x11/windows/x11_window_queries.h"
#include "fuzz/require.h"
#include "platform/picture_header.h"
#include "text/characters.h"
#include "text/foreign_text.h"

namespace tavrelon::fuzz {

namespace {

/// Takes bytes for values from the front; what is missing counts as 0.
class Values {
 public:
    explicit Values(const QByteArray& bytes) : bytes_(bytes) {}

    template <typename T>
    T next() {
        std::array<char, sizeof(T)> part{};
        const auto found = bytes_.sliced(0, std::min<qsizetype>(sizeof(T), bytes_.size()));
        std::ranges::copy(found, part.begin());
        bytes_ = bytes_.sliced(found.size());
        return qFromLittleEndian<T>(part.data());
    }
    const QByteArray& rest() const { return bytes_; }
    /// UTF-16, halves of characters included.
    QString text() const {
        return QString(reinterpret_cast<const QChar*>(bytes_.constData()), bytes_.size() / qsizetype{sizeof(QChar)});
    }

 private:
    QByteArray bytes_;
};

void requireWithin(const QString& text, const text::Utf16Range& range) {
    require(range.location >= 0 && range.length >= 0 && range.location + range.length <= text.size(),
            "a range beyond the text");
}

}  // namespace

void readPicture(const QByteArray& bytes) {
    const auto header = platform::pictureHeader(bytes);
    constexpr qint64 manyPixels = 1 << 16;  // larger ones find nothing more and take long
    if (header && qint64{header->width} * header->height > manyPixels)
        return;
    const auto pixels = desktop::picturePixels(bytes);
    require(pixels.isNull() || header, "a picture that was to be refused");
    require(pixels.isNull() || pixels.format() == QImage::Format_ARGB32, "pixels of another kind");
}

void readAccessibilityReply(const QByteArray& bytes) {
    using namespace desktop::atspi;
    static const std::array names{"", "gtk", "GTK", "Qt", "Gecko", "Chromium"};
    Values values(bytes);
    const auto toolkit = toolkitNamed(QLatin1StringView(names.at(values.next<quint8>() % names.size())));
    const qint64 start = values.next<qint32>();
    const qint64 end = values.next<qint32>();
    const qint64 caret = values.next<qint32>();
    const auto sent = values.text();
    const auto shown = shownText(sent, toolkit.offsets);
    require(shown.size() <= sent.size(), "more text than was sent");
    for (const auto offset : {start, end, caret}) {
        requireWithin(shown, {toUtf16Offset(shown, offset, toolkit.offsets), 0});
        require(toApplicationOffset(shown, offset, toolkit.offsets) >= 0, "a negative position");
    }
    require(insertLength(shown, toolkit.insertLength) >= shown.size() / 2, "a length too short");
    if (const auto selection = selectionOf(shown, {{{start, end}}, caret}, toolkit))
        requireWithin(shown, *selection);
    require(editBetween(sent, shown).applied(sent) == shown, "an edit that leads elsewhere");
}

void readWindowClass(const QByteArray& bytes) {
    const auto [instance, name] = desktop::decodeWindowClass(bytes);
    require(instance.size() + name.size() <= bytes.size(), "more text than bytes");
    require(!instance.contains(QChar(0)) && !name.contains(QChar(0)), "a text goes on behind its end");
    const auto identifier = desktop::bundleIdentifierOf({name, instance});
    require(identifier.has_value() == !(instance.isEmpty() && name.isEmpty()), "an identifier of nothing");
}

void readForeignText(const QByteArray& bytes) {
    constexpr qsizetype longest = 300;
    const auto text = Values(bytes).text();
    const auto isControl = [](QChar unit) { return unit.category() == QChar::Other_Control; };
    const auto line = text::oneLine(text, longest);
    require(text::characterCount(line) <= longest, "a longer line than asked for");
    require(std::ranges::none_of(line,
                                 [&](QChar unit) { return isControl(unit) || unit.category() == QChar::Other_Format; }),
            "a line that turns or breaks");
    const auto answer = text::writableAnswer(text);
    require(std::ranges::none_of(answer, [&](QChar unit) { return isControl(unit) && unit != u'\n' && unit != u'\t'; }),
            "a control character in an answer");
    require(text::writableAnswer(answer) == answer, "an answer that is not clean at once");
}

void readSelection(const QByteArray& bytes) {
    using namespace desktop;
    Values values(bytes);
    const auto& type = textTargets().at(values.next<quint8>() % textTargets().size());
    const int format = 8 << values.next<quint8>() % 3;
    const auto& content = values.rest();
    const auto text = decodeText(type, content);
    require(text && text->size() <= content.size(), "more text than bytes");

    SelectionForms forms;
    forms.insert(type, {.type = type, .format = format});
    const SelectionContent offered({.dataByType = {{type, content}}}, forms);
    for (const auto& target : offered.targets()) {
        const auto data = offered.dataFor(target);
        require(data && data->bytes.size() % (data->format / 8) == 0, "a part of a unit");
        IncrementSource source(*data);
        QByteArray given;
        while (!source.ended())
            given += source.next(7);
        require(given == data->bytes, "something is lost between the increments");
    }

    std::vector<std::uint32_t> atoms(static_cast<std::size_t>(content.size()) / sizeof(std::uint32_t));
    for (auto& atom : atoms)
        atom = values.next<quint32>();
    const auto again = encodeMultiple(decodeMultiple(atoms));
    require(std::ranges::equal(again, atoms | std::views::take(atoms.size() / 2 * 2)), "other conversions");
}

}  // namespace tavrelon::fuzz
