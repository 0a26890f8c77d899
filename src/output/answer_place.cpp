#include "output/answer_place.h"

#include "platform/terminal_focus.h"

namespace tavrelon::output {

using platform::AXAttribute;
using platform::AXElement;

namespace {

QString asTyped(QString text) {
    return text.replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n')
        .replace(QChar::Nbsp, u' ');
}

}  // namespace

void AnswerPlace::remember() {
    const auto window = platform_.workspace.frontmostWindow().value_or(platform::FrontmostWindow());
    target_ = platform::KeyTarget{window.identifier, window.processIdentifier, std::nullopt};
    if (const auto element = focusedElement(); element && holdsText(*element))
        target_->element = element;
}

void AnswerPlace::remember(const platform::RunningApplication& application) {
    target_ = platform::KeyTarget{application.windowIdentifier, application.processIdentifier, std::nullopt};
}

bool AnswerPlace::isInFront() const {
    return !platform_.accessibility.isFocusSecure() && isWindowInFront() && !isOtherElement();
}

bool AnswerPlace::isWindowInFront() const {
    if (platform_.keyPoster.isKeyboardHeld())
        return false;
    if (!target_)
        return true;
    // Numbers of windows are given anew once a window is gone, hence the process.
    const auto now = platform_.workspace.frontmostWindow().value_or(platform::FrontmostWindow());
    return now.identifier == target_->windowIdentifier && now.processIdentifier == target_->processIdentifier;
}

bool AnswerPlace::isTerminal() const {
    return platform::terminalFocus(platform_) != platform::TerminalFocus::None;
}

bool AnswerPlace::takesNoPaste() const {
    const auto window = platform_.workspace.frontmostWindow();
    return window && window->kind == platform::WindowKind::WithoutPaste;
}

keys::Modifiers AnswerPlace::pasteModifiers() const {
    const bool isInside = platform::terminalFocus(platform_) == platform::TerminalFocus::Inside;
    return isInside ? keys::commandFlag | keys::shiftFlag : keys::commandFlag;
}

std::optional<text::Utf16Range> AnswerPlace::Field::rangeOf(const StandingText& standing) const {
    const auto length = standing.text.size();
    if (standing.place && standing.place->element == element &&
        asTyped(text.mid(standing.place->location, length)) == asTyped(standing.text))
        return text::Utf16Range{standing.place->location, length};
    if (isBeforeCaret(standing.text))
        return text::Utf16Range{selection.location - length, length};
    return std::nullopt;
}

bool AnswerPlace::Field::isBeforeCaret(const QString& standing) const {
    return selection.length == 0 && asTyped(text.first(selection.location)).endsWith(asTyped(standing));
}

std::optional<AnswerPlace::Field> AnswerPlace::field() const {
    const auto element = isTerminal() ? std::nullopt : focusedElement();
    if (!element)
        return std::nullopt;
    const auto value = platform_.accessibility.copyAttribute(*element, AXAttribute::Value);
    const auto range = platform_.accessibility.copyAttribute(*element, AXAttribute::SelectedTextRange);
    const auto* held = value ? std::get_if<QString>(&*value) : nullptr;
    const auto* selected = range ? std::get_if<text::Utf16Range>(&*range) : nullptr;
    if (!held || !selected || selected->location < 0 || selected->location > held->size() ||
        held->contains(platform::axEmbeddedObject))
        return std::nullopt;
    return Field{*element, *held, *selected};
}

std::optional<AXElement> AnswerPlace::focusedElement() const {
    const auto focused =
        platform_.accessibility.copyAttribute(platform::axSystemWideElement(), AXAttribute::FocusedUIElement);
    const auto* element = focused ? std::get_if<AXElement>(&*focused) : nullptr;
    return element ? std::optional(*element) : std::nullopt;
}

bool AnswerPlace::holdsText(const AXElement& element) const {
    return platform_.accessibility.copyAttribute(element, AXAttribute::SelectedTextRange).has_value();
}

bool AnswerPlace::isOtherElement() const {
    if (!target_ || !target_->element)
        return false;
    // A container that claims the focus of what is in it is no other place.
    const auto focused = focusedElement();
    if (!focused || *focused == *target_->element || !holdsText(*focused))
        return false;
    // Some applications make their elements anew while the user sees the same field.
    return platform_.accessibility.copyAttribute(*target_->element, AXAttribute::Size) !=
           std::unexpected(platform::AXError::InvalidUIElement);
}

}  // namespace tavrelon::output
