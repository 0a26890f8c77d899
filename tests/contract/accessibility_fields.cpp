#include <gtest/gtest.h>

#include "contract/accessibility_contract.h"
#include "desktop/accessibility_session.h"
#include "support/fake_accessibility.h"

namespace tavrelon::testing {

using platform::AXAttribute;
using platform::AXElement;
using platform::AXValue;
using text::Utf16Range;

namespace {

class FakeField : public ContractField {
 public:
    FakeField() { fake_.windowTitle = QStringLiteral("a title"); }
    platform::Accessibility& accessibility() override { return fake_; }
    qint64 process() const override { return *fake_.frontmostProcess; }
    void arrange(const QString& value, Utf16Range selection) override { fake_.focus(value, selection); }
    void nextTurn() override {}

 private:
    FakeAccessibility fake_;
};

class EditorField : public ContractField {
 public:
    explicit EditorField(const QString& editor)
        : program_(editor, {writeFile(folder_, QStringLiteral("field.txt"), QStringLiteral("at first"))}) {
        const auto found = session_.waitForFocusIn(program_.process());
        EXPECT_TRUE(found) << "the editor's field never got the focus";
        field_ = found.value_or(AXElement{});
    }

    platform::Accessibility& accessibility() override { return session_.accessibility; }
    qint64 process() const override { return program_.process(); }
    void nextTurn() override { testing::nextTurn(); }

    void arrange(const QString& value, Utf16Range selection) override {
        bus_.call(field_, "org.a11y.atspi.EditableText", "SetTextContents", {value});
        QStringList keys{QStringLiteral("ctrl+Home")};
        const auto press = [&](const QString& key, Utf16Range over) {
            for (auto n = text::characterCount(value.mid(over.location, over.length)); n > 0; --n)
                keys.push_back(key);
        };
        press(QStringLiteral("Right"), {0, selection.location});
        press(QStringLiteral("shift+Right"), selection);
        pressKeys(keys);
        EXPECT_TRUE(eventually([&] {
            return session_.read(field_, AXAttribute::SelectedTextRange) == AXValue(selection) &&
                   session_.read(field_, AXAttribute::Value) == AXValue(value);
        })) << "the editor did not take the text";
    }

 private:
    QTemporaryDir folder_;
    AccessibilitySession session_;
    AccessibilityBus bus_;
    RunningProgram program_;
    AXElement field_;
};

}  // namespace

std::unique_ptr<ContractField> makeFakeField() {
    return std::make_unique<FakeField>();
}

std::unique_ptr<ContractField> makeEditorField(const QString& editor) {
    return std::make_unique<EditorField>(editor);
}

}  // namespace tavrelon::testing
