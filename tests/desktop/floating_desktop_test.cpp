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
    QString submitted;
    std::unique_ptr<platform::Panel> panel = panels.create(
        {platform::PanelKind::PromptBox, {420, 74}, QStringLiteral("floating/FloatingInputView"), &model});

    FloatingDesktopTest() {
        model.onSubmit = [this] { submitted = model.text(); };
        panel->setFrameOrigin({300, 500});
        panel->makeKeyAndOrderFront();
        model.renewFocusToken();
        EXPECT_TRUE(runQtUntil([this] { return shownView() && QGuiApplication::focusWindow() == shownView(); }));
    }
};

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
    keyboard.strike(place::enter);
    EXPECT_TRUE(runQtUntil([&] { return submitted == huge; }));
    EXPECT_EQ(shownView()->geometry(), QRect(300, 226, 420, 74));
    EXPECT_EQ(editor.toPlainText(), QString());
    panel->orderOut();
    EXPECT_TRUE(runQtUntil([this] { return editor.hasFocus() && editor.isActiveWindow(); })) << "the focus goes back";
}

}  // namespace tavrelon::ui
