#pragma once

#include <QString>
#include <optional>

#include "text/characters.h"

namespace tavrelon::desktop::atspi {

/// In what an application counts the positions of its text.
enum class OffsetUnit {
    CodePoints,
    Utf16,
    Utf16WithFillers,  ///< UTF-16, with a U+FEFF that is not part of the text behind each character of two units
};

/// In what an application counts the length of an inserted text.
enum class LengthUnit { Utf8Bytes, Utf16 };

/// How the ends of a reported selection count.
enum class SelectionEnds {
    AsOffsets,
    /// As offsets that were taken for UTF-16 and turned into code points once more. The caret is right.
    ConvertedTwice,
};

/// Whether an application does what it is told through the interface for editing.
enum class Editing { Works, OnlyClaimsToWork };

/// Whether elements on the screen say that they show.
enum class ShowingState { Set, NeverSet };

/// In what an application tells places: some know where they are in their window, but not where that is.
enum class Places { OnScreen, InWindowOnly };

/// How a field tells a text of several paragraphs: as one, or as an element for each.
enum class RichText { OneText, EmbeddedObjects };

/// What is told in pixels of the display by an application that does not know where its window is; the rest is in
/// logical ones, as its windows are.
enum class InDisplayPixels { Nothing, Texts, TextsAndFields };

/// The habits of a toolkit, all of them found by trying.
struct Toolkit {
    OffsetUnit offsets = OffsetUnit::CodePoints;
    LengthUnit insertLength = LengthUnit::Utf8Bytes;
    SelectionEnds selectionEnds = SelectionEnds::AsOffsets;
    Editing editing = Editing::Works;
    ShowingState showing = ShowingState::Set;
    Places places = Places::OnScreen;
    InDisplayPixels inDisplayPixels = InDisplayPixels::Nothing;
    RichText richText = RichText::OneText;
    bool operator==(const Toolkit&) const = default;
};

/// The habits of the toolkit that calls itself `name`; the protocol's own rules for a name that is not known.
Toolkit toolkitNamed(const QString& name);

/// The text that the user sees, given the text as the application sent it.
QString shownText(const QString& sent, OffsetUnit unit);

/// Positions of `shown` in UTF-16 units to positions as the application counts, and back. Positions outside of the
/// text count as its nearer end.
qint64 toApplicationOffset(const QString& shown, qint64 utf16, OffsetUnit unit);
qint64 toUtf16Offset(const QString& shown, qint64 offset, OffsetUnit unit);

/// What an application said of its selection, in its own unit.
struct ReportedSelection {
    std::optional<std::pair<qint64, qint64>> ends;  ///< absent where it gave an error
    std::optional<qint64> caret;
    std::optional<qint64> count{};  ///< of selections; only asked where the ends do not tell
};

/// The selection in UTF-16 units of `shown`; where nothing is selected, an empty range at the caret. Absent when the
/// application told neither, or told something that could be one of several selections.
std::optional<text::Utf16Range> selectionOf(const QString& shown, const ReportedSelection& reported,
                                            const Toolkit& toolkit);

/// The length that goes with an inserted text.
qint64 insertLength(const QString& inserted, LengthUnit unit);

}  // namespace tavrelon::desktop::atspi
