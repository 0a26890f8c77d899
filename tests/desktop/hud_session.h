#pragma once

#include <QApplication>
#include <QPlainTextEdit>
#include <QProcess>
#include <QQuickView>
#include <QScreen>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_panels.h"
#include "desktop/qt/qt_screens.h"
#include "desktop/x11/windows/x11_panel_surroundings.h"
#include "support/recording_log.h"
#include "support/run_task_on_qt.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::testing {

/// Real panels over a white editor that fills most of the screen and has the focus.
class PanelSession {
 public:
    desktop::QtMainLoop loop;
    RecordingLog log;
    std::unique_ptr<desktop::X11PanelSurroundings> x11 = desktop::X11PanelSurroundings::create().value();
    desktop::QtScreens screens;
    desktop::QtPanels panels{
        loop, log, {[this] { return x11->isComposited(); }, [this](quint64 window) { x11->focus(window); }}};
    XTestKeyboard keyboard;
    QPlainTextEdit editor;
    int clicks = 0;

    PanelSession() {
        editor.setWindowFlag(Qt::FramelessWindowHint);
        editor.setStyleSheet(QStringLiteral("background: white; color: black; border: none"));
        editor.setGeometry(QGuiApplication::primaryScreen()->geometry());
        editor.viewport()->installEventFilter(&clickCounter_);
        editor.show();
        editor.activateWindow();
        if (!runQtUntil([this] { return editor.hasFocus(); }))
            throw std::runtime_error("the editor gets no focus");
    }

    /// The window of the panel that is on the screen; null while none is.
    QQuickView* shownView() const {
        for (auto* window : QGuiApplication::topLevelWindows())
            if (auto* view = qobject_cast<QQuickView*>(window); view && view->isVisible())
                return view;
        return nullptr;
    }

    /// Runs a tool beside the event loop.
    void run(const QString& program, const QStringList& arguments) {
        QProcess tool;
        tool.start(program, arguments);
        runQtUntil([&] { return tool.state() == QProcess::NotRunning; });
    }
    void click(QPoint position) {
        run(QStringLiteral("xdotool"), {QStringLiteral("mousemove"), QString::number(position.x()),
                                        QString::number(position.y()), QStringLiteral("click"), QStringLiteral("1")});
    }

    QImage screenshot(const QRect& area) const {
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
            .toImage();
    }

    /// Whether nothing but the white editor is to be seen there.
    bool isWhite(QPoint position) const { return screenshot({position, QSize(1, 1)}).pixelColor(0, 0) == Qt::white; }

 private:
    class ClickCounter : public QObject {
     public:
        explicit ClickCounter(int& clicks) : clicks_(clicks) {}
        bool eventFilter(QObject*, QEvent* event) override {
            clicks_ += event->type() == QEvent::MouseButtonPress ? 1 : 0;
            return false;
        }

     private:
        int& clicks_;
    } clickCounter_{clicks};
};

}  // namespace tavrelon::testing
