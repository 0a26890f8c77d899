#pragma once

#include <QAbstractNativeEventFilter>
#include <cstdint>
#include <functional>

namespace tavrelon::desktop {

/// Tells when a compositor starts or ends. Main thread; lives while the toolkit's application does. Silent on a desktop
/// other than X11.
class QtCompositorWatch : private QAbstractNativeEventFilter {
 public:
    explicit QtCompositorWatch(std::function<void()> onChange);
    QtCompositorWatch(const QtCompositorWatch&) = delete;
    QtCompositorWatch& operator=(const QtCompositorWatch&) = delete;
    ~QtCompositorWatch() override;

 private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::function<void()> onChange_;
    std::uint32_t selection_ = 0;  ///< the one that a compositor owns
    int notice_ = 0;               ///< the type of the event that tells of a selection's new owner; 0 for none
};

}  // namespace tavrelon::desktop
