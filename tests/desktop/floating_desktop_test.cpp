#include <gtest/gtest.h>

#include <QClipboard>

#include "desktop/hud_session.h"
#include "support/qt_gtest.h"
#include "ui/floating/floating_input_model.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;
using tavrelon::testing::runQtUntil;
namespace place = tavrelon::testing::place;

class FloatingDesktopTest : public ::testing::Test, public tavrelon::testing::PanelSession {
 public:
    FloatingInputModel model;
    QStringList called;
    std::unique_ptr<platform::Panel> panel;

    FloatingDesktopTest() {
        model.onSubmit = [this] { called << model.text(); };
        model.onCancel = [this] { called << QStringLiteral("cancel"); };
        open();
    }
    void open() {
        panel = panels.create(
            {platform::PanelKind::PromptBox, {420, 74}, QStringLiteral("floating/FloatingInputView"), &model});
        panel->setFrameOrigin({300, 500});
        panel->makeKeyAndOrderFront();
        model.renewFocusToken();
        ASSERT_TRUE(runQtUntil([this] { return shownView() && QGuiApplication::focusWindow() == shownView(); }));
    }
    void strikeUntil(place::Code key, const std::function<bool()>& condition) {
        keyboard.strike(key);
        EXPECT_TRUE(runQtUntil(condition, 10s));
    }
};

TEST_F(FloatingDesktopTest, ItTakesTheKeysAndReturnAndEscape) {
    EXPECT_EQ(shownView()->geometry(), QRect(300, 226, 420, 74));
    strikeUntil(place::a, [this] { return model.text() == QStringLiteral("a"); });
    strikeUntil(place::enter, [this] { return called.size() == 1; });
    strikeUntil(place::escape, [this] { return called.size() == 2; });
    EXPECT_EQ(called, (QStringList{QStringLiteral("a"), QStringLiteral("cancel")}));
    EXPECT_EQ(editor.toPlainText(), QString());

    model.setText(QString());
    strikeUntil(place::s, [this] { return model.text() == QStringLiteral("s"); });
    panel->orderOut();
    EXPECT_TRUE(runQtUntil([this] { return editor.hasFocus() && editor.isActiveWindow(); })) << "the focus goes back";
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(FloatingDesktopTest, AHugePasteAndLineBreaksAreTakenAsTheyAre) {
    const auto lines = QStringLiteral("first\nsecond\n");
    QGuiApplication::clipboard()->setText(lines);
    keyboard.strikeWith({place::leftControl}, place::v);
    EXPECT_TRUE(runQtUntil([&] { return model.text() == lines; })) << model.text().toStdString();
    const QString huge(100'000, u'x');
    QGuiApplication::clipboard()->setText(huge);
    keyboard.strikeWith({place::leftControl}, place::a);
    keyboard.strikeWith({place::leftControl}, place::v);
    EXPECT_TRUE(runQtUntil([&] { return model.text() == huge; }, 30s)) << model.text().size();
    strikeUntil(place::enter, [this] { return called == QStringList{QString(100'000, u'x')}; });
}

}  // namespace tavrelon::ui
