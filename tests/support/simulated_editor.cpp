#include "support/simulated_editor.h"

#include "text/characters.h"

namespace tavrelon::testing {

SimulatedEditor::SimulatedEditor(FakeAccessibility& accessibility, FakePasteboard& pasteboard, FakeKeyPoster& poster)
    : accessibility_(accessibility), pasteboard_(pasteboard) {
    poster.onPress = [this](const FakeKeyPoster::Stroke& stroke) { receive(stroke); };
}

void SimulatedEditor::open(const QString& text, Visibility visibility) {
    visibility_ = visibility;
    field_ = {text, {text.size(), 0}};
    show();
}

void SimulatedEditor::select(qint64 location, qint64 length) {
    field_.selection = {location, length};
    show();
}

void SimulatedEditor::type(const QString& text) {
    read();
    replaceSelection(text);
}

void SimulatedEditor::receive(const FakeKeyPoster::Stroke& stroke) {
    read();
    const auto& selection = field_.selection;
    if (stroke.is(keys::keyBackspace, keys::noModifiers)) {
        if (selection.length == 0) {
            const auto before = field_.value.first(selection.location);
            const auto kept = text::withoutLastCharacter(before);
            field_.selection = {kept.size(), before.size() - kept.size()};
        }
        replaceSelection(QString());
    } else if (stroke.is(keys::keyV, keys::commandFlag)) {
        replaceSelection(pasteboard_.text().value_or(QString()));
    } else if (stroke.is(keys::keyC, keys::commandFlag)) {
        if (selection.length > 0)
            pasteboard_.copyElsewhere(field_.value.sliced(selection.location, selection.length));
    } else if (stroke.is(keys::keyA, keys::commandFlag)) {
        select(0, field_.value.size());
    }
}

void SimulatedEditor::replaceSelection(const QString& text) {
    field_.value.replace(field_.selection.location, field_.selection.length, text);
    field_.selection = {field_.selection.location + text.size(), 0};
    show();
}

void SimulatedEditor::show() {
    accessibility_.field.reset();
    if (visibility_ == Visibility::Visible)
        accessibility_.field = field_;
}

void SimulatedEditor::read() {
    if (accessibility_.field)  // accessibility may have replaced the selection meanwhile
        field_ = *accessibility_.field;
}

}  // namespace tavrelon::testing
