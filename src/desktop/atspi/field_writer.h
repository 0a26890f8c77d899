#pragma once

#include "desktop/atspi/field_reader.h"
#include "platform/log.h"

namespace tavrelon::desktop::atspi {

/// A part of a field, in UTF-16 units, and what stands there.
struct StandingText {
    text::Utf16Range range;
    QString text;
};

/// Replaces the selection or a part of one field. Main thread, which waits for up to 500 ms.
class FieldWriter {
 public:
    FieldWriter(AtspiTracker& tracker, AtspiDirectory& directory, platform::Log& log);

    /// Puts `inserted` in place of the selection, or at the caret where nothing is selected. Every step is read back,
    /// since applications answer that they did what they did not. If one fails the field gets back what it held, and
    /// its selection.
    platform::AXError replaceSelection(const ObjectReference& field, const QString& inserted);

    /// Likewise in place of a part; `NoValue` if that text does not stand there or something is selected.
    platform::AXError replace(const ObjectReference& field, const StandingText& part, const QString& inserted);

 private:
    platform::AXError open(const ObjectReference& field, const QString& inserted);
    platform::AXError edit(const QString& inserted);
    bool mayEdit() const;
    bool remove(text::Utf16Range range, const QString& from);
    bool insert(const QString& inserted, qint64 at, const QString& into);
    bool command(const char* interface, const char* method, const QVariantList& arguments);
    bool reached(bool accepted, const QString& before, const QString& wanted);
    platform::AXError settle(const QString& wanted);
    void restore(const QString& now);
    void restoreSelection();
    bool holds(const QString& text);
    qint32 offset(qint64 utf16, const QString& in) const;

    Allowance allowance_;
    AtspiCalls calls_;
    FieldReader reader_;
    platform::Log& log_;
    ObjectReference field_;
    FieldDescription description_;
    QString original_;
    text::Utf16Range selection_;  ///< as the field had it
    text::Utf16Range replaced_;
    bool leftUnanswered_ = false;  // a command was, so it may still be carried out
};

}  // namespace tavrelon::desktop::atspi
