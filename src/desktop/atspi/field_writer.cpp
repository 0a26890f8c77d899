#include "desktop/atspi/field_writer.h"

#include <thread>

#include "desktop/atspi/chain.h"
#include "desktop/atspi/field_repair.h"

namespace tavrelon::desktop::atspi {

using namespace std::chrono_literals;
using platform::AXError;

namespace {

/// How long a change that was accepted may take to show.
constexpr auto settleTime = 60ms;
constexpr auto settlePause = 10ms;

/// Editing cannot use up the time that putting things back may need.
constexpr auto editAllowance = 235ms;
constexpr auto restoreAllowance = 235ms;

bool canBeSent(const QString& text) {
    return !text.contains(QChar(0)) && QString::fromUtf8(text.toUtf8()) == text;
}

}  // namespace

FieldWriter::FieldWriter(AtspiTracker& tracker, AtspiDirectory& directory, platform::Log& log)
    : allowance_(editAllowance), calls_(tracker, allowance_), reader_(calls_, directory), log_(log) {}

AXError FieldWriter::replaceSelection(const ObjectReference& field, const QString& inserted) {
    if (const auto outcome = open(field, inserted); outcome != AXError::Success)
        return outcome;
    replaced_ = selection_;
    return mayEdit() ? edit(inserted) : AXError::AttributeUnsupported;
}

AXError FieldWriter::replace(const ObjectReference& field, const StandingText& part, const QString& inserted) {
    if (const auto outcome = open(field, inserted); outcome != AXError::Success)
        return outcome;
    if (text::substring(original_, part.range) != part.text)
        return AXError::NoValue;
    replaced_ = part.range;
    return mayEdit() ? edit(inserted) : AXError::AttributeUnsupported;
}

AXError FieldWriter::open(const ObjectReference& field, const QString& inserted) {
    if (!canBeSent(inserted))
        return AXError::IllegalArgument;
    field_ = field;
    const auto description = reader_.describe(field);
    if (!description)
        return description.error();
    description_ = *description;
    const auto contents = reader_.read(field, description_);
    if (!contents)
        return contents.error();
    if (!contents->selection)
        return AXError::NoValue;
    original_ = contents->value;
    selection_ = *contents->selection;
    return AXError::Success;
}

bool FieldWriter::mayEdit() const {
    const auto selected = original_.mid(replaced_.location, replaced_.length);
    return description_.has(editableTextInterface) && description_.toolkit.editing == Editing::Works &&
           !selected.contains(platform::axEmbeddedObject);
}

AXError FieldWriter::edit(const QString& inserted) {
    const auto without = TextEdit{replaced_, {}}.applied(original_);
    const auto wanted = TextEdit{replaced_, inserted}.applied(original_);
    if (replaced_.length > 0) {
        const bool accepted = remove(replaced_, original_);
        if (!reached(accepted, original_, without))
            return settle(wanted);
    }
    if (!inserted.isEmpty()) {
        const bool accepted = insert(inserted, replaced_.location, without);
        if (!reached(accepted, without, wanted))
            return settle(wanted);
    }
    const auto end = [](const text::Utf16Range& range) { return range.location + range.length; };
    if (end(selection_) == end(replaced_))  // a caret elsewhere stays where the user has put it
        command(textInterface, "SetCaretOffset", {offset(replaced_.location + inserted.size(), wanted)});
    return AXError::Success;
}

bool FieldWriter::reached(bool accepted, const QString& before, const QString& wanted) {
    for (auto waited = 0ms;; waited += settlePause) {
        const auto now = reader_.readText(field_, description_.toolkit);
        if (now && *now == wanted)
            return true;
        if (!now || *now != before || !accepted || waited >= settleTime)
            return false;
        std::this_thread::sleep_for(settlePause);
        allowance_.spend(settlePause);
    }
}

AXError FieldWriter::settle(const QString& wanted) {
    allowance_ = Allowance(restoreAllowance);
    const auto now = reader_.readText(field_, description_.toolkit);
    if (now && *now == wanted)
        return AXError::Success;
    // One who did not answer may still do all that it was told; more commands would only add to it.
    if (!now || leftUnanswered_)
        return AXError::CannotComplete;
    restore(*now);
    return AXError::Failure;
}

void FieldWriter::restore(const QString& now) {
    if (now == original_)
        return restoreSelection();
    const auto repair = editBetween(now, original_);
    const auto without = TextEdit{repair.removed, {}}.applied(now);
    if (repair.removed.length > 0)
        remove(repair.removed, now);
    if (!repair.inserted.isEmpty())
        insert(repair.inserted, repair.removed.location, without);
    if (!holds(original_))
        command(editableTextInterface, "SetTextContents", {original_});
    if (holds(original_))
        return restoreSelection();
    log_.line(QStringLiteral("[Accessibility] An application broke off a replacement and %1 characters could not be "
                             "put back")
                  .arg(text::characterCount(repair.inserted)));
}

void FieldWriter::restoreSelection() {
    const auto start = offset(selection_.location, original_);
    const auto end = offset(selection_.location + selection_.length, original_);
    if (start == end)
        command(textInterface, "SetCaretOffset", {start});
    else if (!command(textInterface, "AddSelection", {start, end}))
        command(textInterface, "SetSelection", {qint32{0}, start, end});
}

bool FieldWriter::remove(text::Utf16Range range, const QString& from) {
    return command(editableTextInterface, "DeleteText",
                   {offset(range.location, from), offset(range.location + range.length, from)});
}

bool FieldWriter::insert(const QString& inserted, qint64 at, const QString& into) {
    // The wrong unit here makes some insert nothing and others swallow what follows.
    const auto length = static_cast<qint32>(insertLength(inserted, description_.toolkit.insertLength));
    return command(editableTextInterface, "InsertText", {offset(at, into), inserted, length});
}

bool FieldWriter::command(const char* interface, const char* method, const QVariantList& arguments) {
    const auto answer = chain(calls_.send(methodCall(field_, interface, method, arguments)), answerOf);
    if (!answer && answer.error() == AXError::CannotComplete)
        leftUnanswered_ = true;
    return answer.value_or(false);
}

bool FieldWriter::holds(const QString& text) {
    return reader_.readText(field_, description_.toolkit) == text;
}

qint32 FieldWriter::offset(qint64 utf16, const QString& in) const {
    return static_cast<qint32>(toApplicationOffset(in, utf16, description_.toolkit.offsets));
}

}  // namespace tavrelon::desktop::atspi
