#pragma once

#include <map>
#include <optional>
#include <vector>

#include "platform/accessibility.h"

namespace tavrelon::testing {

/// A field of an application in front, as a test wants it to be. Tests change the members at any time; every read sees
/// them as they are then.
class FakeAccessibility : public platform::Accessibility {
 public:
    using AXAttribute = platform::AXAttribute;
    using AXElement = platform::AXElement;
    using AXError = platform::AXError;
    using AXValue = platform::AXValue;
    using Kind = platform::AXElement::Kind;

    struct Call {
        enum class Operation { Copy, CopyParameterized, Set };
        Operation operation = Operation::Copy;
        AXElement element;
        AXAttribute attribute{};
        std::optional<text::Utf16Range> range;  ///< of CopyParameterized
        bool operator==(const Call&) const = default;
    };

    struct Field {
        QString value;
        text::Utf16Range selection;  ///< must lie within `value`; length 0 is the caret
        bool operator==(const Field&) const = default;
    };

    bool trusted = true;
    std::optional<qint64> frontmostProcess = 4711;  ///< absent: no application is in front
    std::optional<QString> windowTitle;             ///< absent: the window gives no title
    std::optional<Field> field;                     ///< absent: nothing that holds text has the focus
    std::optional<platform::AXRect> caretBounds;    ///< absent: the field does not tell where its text is
    std::optional<platform::AXRect> fieldFrame;     ///< absent: nor where it is itself
    platform::FocusKind fieldKind = platform::FocusKind::Ordinary;  ///< a password tells nothing and takes nothing
    QString fieldPath = QStringLiteral("/field");                   ///< another one is another element
    AXError setSelectedTextResult = AXError::Success;  ///< any other refuses the text and leaves the field alone

    bool replacesText = false;  ///< otherwise it offers no interface for editing

    /// The element that `field` is.
    AXElement fieldElement() const;

    /// Gives the focus to a field with the caret at the end of `value`.
    void focus(const QString& value);
    void focus(const QString& value, text::Utf16Range selection);

    /// Says that an element has got the focus.
    void tellOfFocus() {
        if (focusHandler_)
            focusHandler_();
    }

    /// Lets every read of the attribute of that kind of element fail, or answer `value` whatever the field holds.
    void fail(Kind kind, AXAttribute attribute, AXError error);
    void answer(Kind kind, AXAttribute attribute, AXValue value);
    void behave(Kind kind, AXAttribute attribute);  ///< takes either back

    const std::vector<Call>& calls() const { return calls_; }
    int callCount(Kind kind, AXAttribute attribute) const;
    void clearCalls() { calls_.clear(); }

    bool isProcessTrusted() const override { return trusted; }
    Result copyAttribute(const AXElement& element, AXAttribute attribute) override;
    Result copyParameterizedAttribute(const AXElement& element, AXAttribute attribute, text::Utf16Range range) override;
    AXError setAttribute(const AXElement& element, AXAttribute attribute, const QString& value) override;
    AXError replaceText(const AXElement& element, text::Utf16Range range, const QString& expected,
                        const QString& text) override;
    platform::FocusKind focusKind() override { return field ? fieldKind : platform::FocusKind::Unknown; }
    void onFocusChange(std::function<void()> handler) override { focusHandler_ = std::move(handler); }

 private:
    std::optional<Result> scripted(const AXElement& element, AXAttribute attribute) const;
    Result ofSystem(AXAttribute attribute) const;
    Result ofApplication(qint64 process, AXAttribute attribute) const;
    Result ofWindow(AXAttribute attribute) const;
    Result ofField(const AXElement& element, AXAttribute attribute) const;

    std::map<std::pair<Kind, AXAttribute>, Result> scripts_;
    std::vector<Call> calls_;
    std::function<void()> focusHandler_;
};

}  // namespace tavrelon::testing
