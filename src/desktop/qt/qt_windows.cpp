#include "desktop/qt/qt_windows.h"

#include <malloc.h>

#include <QGuiApplication>
#include <QIcon>
#include <QQuickItem>
#include <QQuickView>
#include <QScreen>

#include "async/lifetime.h"
#include "desktop/qt/qt_view_engine.h"

namespace tavrelon::desktop {

namespace {

/// Shows before the view has drawn anything.
constexpr QColor background(0x0a, 0x12, 0x24);

class QtWindow : public QObject, public platform::Window {
 public:
    QtWindow(async::MainLoop& loop, platform::Log& log, const platform::WindowDescription& description,
             std::function<void()> onClose)
        : loop_(loop), onClose_(std::move(onClose)), engine_(makeViewEngine(log)) {
        view_ = std::make_unique<QQuickView>(engine_.get(), nullptr);
        view_->setColor(background);
        view_->setTitle(QGuiApplication::applicationName());  // lists of windows would have nothing to call it by
        view_->setIcon(QIcon::fromTheme(QStringLiteral("tavrelon")));
        view_->setResizeMode(QQuickView::SizeRootObjectToView);
        view_->setMinimumSize(description.minimumSize.toSize());
        view_->resize(description.contentSize.toSize());
        view_->setInitialProperties({{QStringLiteral("model"), QVariant::fromValue(description.model)}});
        view_->setSource(viewUrl(description.view));
        view_->installEventFilter(this);
        centre();
    }

    ~QtWindow() override {
        if (auto* root = view_->rootObject())
            root->forceActiveFocus();  // a field that is being typed in hands its text on
        giveTexturesBack(*view_);
        view_.reset();
        engine_.reset();
        // What the view leaves to be deleted later would never be when the program's loop has ended.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        malloc_trim(0);  // what the views took lies in many small holes, which the allocator keeps unless told
    }

    void makeKeyAndOrderFront() override {
        if (view_->visibility() == QWindow::Minimized)
            view_->showNormal();
        view_->show();
        view_->raise();
        view_->requestActivate();
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Close)
            loop_.post(lifetime_.guard([this] {
                const auto onClose = std::exchange(onClose_, [] {});
                onClose();
            }));
        return false;
    }

 private:
    void centre() {
        const auto* screen = QGuiApplication::primaryScreen();
        if (!screen)
            return;
        QRect frame(QPoint(), view_->size());
        frame.moveCenter(screen->availableGeometry().center());
        view_->setPosition(frame.topLeft());
    }

    async::MainLoop& loop_;
    std::function<void()> onClose_;
    std::unique_ptr<QQmlEngine> engine_;
    std::unique_ptr<QQuickView> view_;
    async::Lifetime lifetime_;
};

}  // namespace

std::unique_ptr<platform::Window> QtWindows::create(const platform::WindowDescription& description,
                                                    std::function<void()> onClose) {
    return std::make_unique<QtWindow>(loop_, log_, description, std::move(onClose));
}

}  // namespace tavrelon::desktop
