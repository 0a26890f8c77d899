#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

namespace tavrelon::desktop {

/// Ends another thread's wait in `poll`. Any thread.
class X11TapWake {
 public:
    X11TapWake() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    X11TapWake(const X11TapWake&) = delete;
    X11TapWake& operator=(const X11TapWake&) = delete;
    ~X11TapWake() { ::close(descriptor_); }

    int descriptor() const { return descriptor_; }
    void signal() { ::eventfd_write(descriptor_, 1); }
    void clear() {
        eventfd_t count = 0;
        ::eventfd_read(descriptor_, &count);
    }

 private:
    int descriptor_;
};

}  // namespace tavrelon::desktop
