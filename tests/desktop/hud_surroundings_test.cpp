// Overlays on a desktop that changes under them: monitors, workspaces, full-screen windows, compositors.
#include <gtest/gtest.h>

#include "desktop/hud_session.h"
#include "desktop/qt/qt_application.h"
#include "desktop/qt/qt_status_item.h"
#include "support/qt_gtest.h"
#include "ui/floating/floating_input_model.h"
#include "ui/hud/hotkey_status_hud_window_controller.h"
#include "ui/hud/input_hud_model.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;
using tavrelon::testing::runQtUntil;

class HUDSurroundingsTest : public ::testing::Test, public tavrelon::testing::PanelSession {
 public:
    InputHUDModel model;
    desktop::QtApplication application;
    desktop::QtStatusItem statusItem;
    platform::UserInterface userInterface{application, panels, screens, statusItem};
    const QPoint onPanel{570, 370};  ///< within the overlay, beside its icon and words

    std::unique_ptr<platform::Panel> shownOverlay() {
        model.show(input::InputState::Case::processing, input::InputTrigger::text);
        auto panel =
            panels.create({platform::PanelKind::Overlay, {200, 60}, QStringLiteral("hud/InputHUDView"), &model});
        panel->setFrameOrigin({400, 400});
        panel->orderFront();
        EXPECT_TRUE(runQtUntil([this] { return !isWhite(onPanel); })) << "nothing is to be seen";
        return panel;
    }
    void xdotool(const QStringList& arguments) { run(QStringLiteral("xdotool"), arguments); }
    void xrandr(const QStringList& arguments) { run(QStringLiteral("xrandr"), arguments); }
};

TEST_F(HUDSurroundingsTest, AnOverlayStandsOnEveryWorkspaceAndAboveAFullScreenWindow) {
    const auto panel = shownOverlay();
    editor.showFullScreen();
    EXPECT_TRUE(runQtUntil([this] { return editor.isFullScreen() && !isWhite(onPanel); }));
    xdotool({QStringLiteral("set_desktop"), QStringLiteral("1")});
    // The editor stays behind on its workspace, and the overlay does not.
    EXPECT_TRUE(runQtUntil([this] { return !isWhite({20, 20}); }));
    EXPECT_TRUE(runQtUntil([this] { return screenshot({onPanel, QSize(1, 1)}) != screenshot({20, 20, 1, 1}); }));
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(HUDSurroundingsTest, APromptBoxGoesFromWorkspaceToWorkspaceAndHasNoPlaceInATaskBar) {
    FloatingInputModel prompt;
    const auto box = panels.create(
        {platform::PanelKind::PromptBox, {420, 74}, QStringLiteral("floating/FloatingInputView"), &prompt});
    box->setFrameOrigin({400, 400});
    for (const auto* workspace : {"1", "0"}) {  // each showing wishes anew
        box->makeKeyAndOrderFront();
        ASSERT_TRUE(runQtUntil([this] { return !isWhite(onPanel); })) << "nothing is to be seen";
        xdotool({QStringLiteral("set_desktop"), QString::fromLatin1(workspace)});
        const QString window = QString::number(shownView()->winId());
        QProcess told;
        told.start(QStringLiteral("xprop"),
                   {QStringLiteral("-id"), window, QStringLiteral("_NET_WM_DESKTOP"), QStringLiteral("_NET_WM_STATE")});
        EXPECT_TRUE(runQtUntil([&] { return told.state() == QProcess::NotRunning; }));
        const auto properties = told.readAllStandardOutput();
        EXPECT_TRUE(properties.contains("SKIP_TASKBAR")) << properties.toStdString();
        EXPECT_TRUE(properties.contains("4294967295")) << properties.toStdString();
        EXPECT_TRUE(runQtUntil([this] { return screenshot({onPanel, QSize(1, 1)}) != screenshot({20, 20, 1, 1}); }));
        box->orderOut();
        EXPECT_TRUE(runQtUntil([this] { return screenshot({onPanel, QSize(1, 1)}) == screenshot({20, 20, 1, 1}); }));
    }
}

TEST_F(HUDSurroundingsTest, ACompositorThatStartsOrEndsChangesTheShapeOfWhatIsShown) {
    const auto panel = shownOverlay();
    EXPECT_FALSE(shownView()->mask().isEmpty()) << "translucent corners would be black";
    QProcess compositor;
    compositor.start(QStringLiteral("picom"), {QStringLiteral("--backend"), QStringLiteral("xrender")});
    EXPECT_TRUE(runQtUntil([this] { return shownView()->mask().isEmpty(); }));
    compositor.terminate();
    EXPECT_TRUE(runQtUntil([&] { return compositor.state() == QProcess::NotRunning; }));
    EXPECT_TRUE(runQtUntil([this] { return !shownView()->mask().isEmpty() && isWhite({400, 340}); }));
    EXPECT_EQ(log.lines(), QStringList());
}

TEST_F(HUDSurroundingsTest, TheStatusOverlayGoesToTheMonitorOfTheMouseAndLivesThroughItsEnd) {
    xrandr({QStringLiteral("--setmonitor"), QStringLiteral("LEFT"), QStringLiteral("640/169x800/211+0+0"),
            QStringLiteral("screen")});
    xrandr({QStringLiteral("--setmonitor"), QStringLiteral("RIGHT"), QStringLiteral("640/169x800/211+640+0"),
            QStringLiteral("none")});
    ASSERT_TRUE(runQtUntil([] { return QGuiApplication::screens().size() == 2; }));
    xdotool({QStringLiteral("mousemove"), QStringLiteral("900"), QStringLiteral("300")});
    HotkeyStatusHUDWindowController controller(loop, userInterface, [] { return HUDLanguage::English; });
    controller.show(false);
    ASSERT_TRUE(runQtUntil([this] { return shownView() != nullptr; }));
    EXPECT_EQ(shownView()->geometry(), QRect(640 + 190, 80, 260, 80)) << "in its middle, 80 below its upper edge";

    xrandr({QStringLiteral("--delmonitor"), QStringLiteral("RIGHT")});
    xrandr({QStringLiteral("--delmonitor"), QStringLiteral("LEFT")});
    ASSERT_TRUE(runQtUntil([] { return QGuiApplication::primaryScreen()->size() == QSize(1280, 800); }));
    controller.show(true);
    EXPECT_TRUE(runQtUntil([this] { return shownView() && shownView()->geometry() == QRect(510, 80, 260, 80); }));
    EXPECT_TRUE(runQtUntil([this] { return shownView() == nullptr; })) << "it goes by itself";
    EXPECT_EQ(log.lines(), QStringList());
}

}  // namespace tavrelon::ui
