#pragma once

#include "desktop/x11/keys/x11_hotkeys.h"
#include "platform/key_observer.h"

namespace tavrelon::desktop {

/// What is typed in an X session, seen beside its way to the window in front. It shares the thread of the hotkeys and
/// runs only while they do.
class X11KeyObserver : public platform::KeyObserver {
 public:
    explicit X11KeyObserver(X11Hotkeys& hotkeys) : hotkeys_(hotkeys) {}

    bool start(Calls calls) override;
    void stop() override;

 private:
    X11Hotkeys& hotkeys_;
};

}  // namespace tavrelon::desktop
