#pragma once

#include "support/fake_accessibility.h"
#include "support/fake_key_poster.h"
#include "support/fake_pasteboard.h"

namespace tavrelon::testing {

/// An editor with one field: posted keys and pastes change its text as they would change a real one's, and what it
/// holds is what accessibility tells.
class SimulatedEditor {
 public:
    SimulatedEditor(FakeAccessibility& accessibility, FakePasteboard& pasteboard, FakeKeyPoster& poster);

    /// Whether accessibility sees the field. An opaque editor still takes keys, pastes and copies.
    enum class Visibility { Visible, Opaque };
    void open(const QString& text, Visibility visibility = Visibility::Visible);

    /// Puts the caret, or selects, in UTF-16 units.
    void select(qint64 location, qint64 length = 0);
    void type(const QString& text);
    const QString& text() const { return accessibility_.field ? accessibility_.field->value : field_.value; }

 private:
    void receive(const FakeKeyPoster::Stroke& stroke);
    void replaceSelection(const QString& text);
    void show();
    void read();

    FakeAccessibility& accessibility_;
    FakePasteboard& pasteboard_;
    FakeAccessibility::Field field_;
    Visibility visibility_ = Visibility::Visible;
};

}  // namespace tavrelon::testing
