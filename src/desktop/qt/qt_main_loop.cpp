#include "desktop/qt/qt_main_loop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>

#if __has_feature(thread_sanitizer)
#include <sanitizer/tsan_interface.h>
#endif

namespace tavrelon::desktop {

namespace {

const auto blockEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

class BlockEvent : public QEvent {
 public:
    explicit BlockEvent(async::MainLoop::Block block) : QEvent(blockEvent), block_(std::move(block)) {}
    void run() { block_(); }

 private:
    async::MainLoop::Block block_;
};

// The lock that hands an event from thread to thread is Qt's, which the thread sanitizer does not see.
void handOver([[maybe_unused]] QEvent* event) {
#if __has_feature(thread_sanitizer)
    __tsan_release(event);
#endif
}
void takeOver([[maybe_unused]] QEvent* event) {
#if __has_feature(thread_sanitizer)
    __tsan_acquire(event);
#endif
}

}  // namespace

QtMainLoop::QtMainLoop() = default;
QtMainLoop::~QtMainLoop() = default;

void QtMainLoop::post(Block block) {
    auto* event = new BlockEvent(std::move(block));
    handOver(event);
    QCoreApplication::postEvent(this, event);
}

bool QtMainLoop::event(QEvent* event) {
    takeOver(event);
    if (event->type() != blockEvent)
        return QObject::event(event);
    static_cast<BlockEvent*>(event)->run();
    return true;
}

async::Timer QtMainLoop::after(std::chrono::nanoseconds delay, Block block) {
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    // The block may drop its own timer, so it leaves the timer object before it runs.
    auto held = std::make_shared<Block>(std::move(block));
    QObject::connect(timer, &QTimer::timeout, timer, [timer, held] {
        timer->deleteLater();
        auto run = std::move(*held);
        run();
    });
    // Rounded up: a wait is never shorter than it was asked to be.
    timer->start(std::chrono::ceil<std::chrono::milliseconds>(delay));
    return async::Timer([pointer = QPointer(timer)] { delete pointer.data(); });
}

}  // namespace tavrelon::desktop
