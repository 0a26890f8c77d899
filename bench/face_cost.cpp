// face-cost SECONDS: shows each face of the input overlay for that long on the running desktop and prints a line for
// each: its name and the share of one core that this process took meanwhile, in per cent. The last line is "hidden".
#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "desktop/linux/process/standard_output_log.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/qt/qt_panels.h"
#include "ui/hud/input_hud_model.h"

using namespace tavrelon;
using namespace std::chrono_literals;
using Case = input::InputState::Case;
using input::InputTrigger;

namespace {

double processorSeconds() {
    timespec taken{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &taken);
    return static_cast<double>(taken.tv_sec) + static_cast<double>(taken.tv_nsec) / 1e9;
}

void run(std::chrono::milliseconds length) {
    QEventLoop turns;
    QTimer::singleShot(length, &turns, [&] { turns.quit(); });
    turns.exec();
}

double shareOver(std::chrono::milliseconds length) {
    run(500ms);  // what showing costs is not the matter here
    const double before = processorSeconds();
    run(length);
    return 100 * (processorSeconds() - before) / std::chrono::duration<double>(length).count();
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const auto length = std::chrono::seconds(argc > 1 ? std::atoi(argv[1]) : 3);
    desktop::QtMainLoop loop;
    desktop::StandardOutputLog log;
    desktop::QtPanels panels(loop, log, {[] { return false; }, [](quint64) {}});
    ui::InputHUDModel model;
    const auto panel =
        panels.create({platform::PanelKind::Overlay, {200, 60}, QStringLiteral("hud/InputHUDView"), &model});
    panel->setFrameOrigin({400, 400});
    const struct {
        const char* name;
        Case state;
        InputTrigger trigger;
    } faces[] = {
        {"listening", Case::listening, InputTrigger::text},
        {"voice", Case::listeningVoice, InputTrigger::voice},
        {"video recording", Case::recordingVideo, InputTrigger::video},
        {"video processing", Case::processing, InputTrigger::video},
        {"auto-reply", Case::processing, InputTrigger::autoReply},
        {"processing", Case::processing, InputTrigger::text},
        {"completed", Case::completed, InputTrigger::text},
    };
    for (const auto& face : faces) {
        model.show(face.state, face.trigger);
        panel->setContentSize(ui::hudContentSize(face.state, face.trigger));
        panel->orderFront();
        std::printf("%s %.2f\n", face.name, shareOver(length));
    }
    panel->orderOut();
    std::printf("hidden %.2f\n", shareOver(length));
    return 0;
}
