#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QWindow>

#include "desktop/qt/qt_status_item.h"
#include "desktop/qt/qt_symbols.h"
#include "support/run_task_on_qt.h"
#include "ui/hud/hud_look.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;
using input::InputState;
using Case = InputState::Case;

namespace {

TEST(StatusItemTest, EveryStateHasASymbolThatIsDrawn) {
    for (const auto state : {Case::idle, Case::listening, Case::listeningVoice, Case::recordingVideo, Case::processing,
                             Case::completed, Case::error}) {
        for (const auto& symbol : {ui::statusSymbol(state), ui::hudLook(state).symbol}) {
            const auto image = desktop::symbolImage(symbol, Qt::red, 32);
            ASSERT_FALSE(image.isNull()) << symbol.toStdString();
            int inked = 0;
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 32; ++x)
                    inked += image.pixelColor(x, y).alpha() > 128 && image.pixelColor(x, y).red() > 128 ? 1 : 0;
            EXPECT_GT(inked, 30) << symbol.toStdString() << " is drawn in the colour that was asked for";
        }
    }
    EXPECT_TRUE(desktop::symbolImage(QStringLiteral("no.such.symbol"), Qt::red, 32).isNull());
}

TEST(StatusItemTest, TheIconLivesWithoutATrayAndDocksWhenOneComes) {
    desktop::QtStatusItem item;
    item.setImage(QStringLiteral("key.fill"), QStringLiteral("Tavrelon"));
    item.setMenu({{QStringLiteral("Quit"), QStringLiteral("q"), [] {}}});
    const auto embedded = [] {
        for (const auto* window : QGuiApplication::allWindows())
            if (window->isExposed())
                return true;
        return false;
    };
    runQtUntil([] { return false; }, 300ms);
    EXPECT_FALSE(embedded());
    QProcess tray;
    tray.setStandardErrorFile(QProcess::nullDevice());
    tray.start(QStringLiteral("tint2"), QStringList());
    EXPECT_TRUE(runQtUntil(embedded, 15s));
    item.setImage(QStringLiteral("waveform"), QStringLiteral("Tavrelon"));
    tray.terminate();
    EXPECT_TRUE(runQtUntil([&] { return tray.state() == QProcess::NotRunning; }));
    item.setImage(QStringLiteral("key.fill"), QStringLiteral("Tavrelon"));  // and goes on without it
}

}  // namespace

}  // namespace tavrelon::testing
