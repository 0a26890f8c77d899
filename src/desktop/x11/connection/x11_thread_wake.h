#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

namespace tavrelon::desktop {

/// Ends another thread's wait in `poll`: that thread waits for `descriptor` to become readable and then clears it. Any
/// thread.
class X11ThreadWake {
 public:
    X11ThreadWake() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    X11ThreadWake(const X11ThreadWake&) = delete;
    X11ThreadWake& operator=(const X11ThreadWake&) = delete;
    ~X11ThreadWake() {
        if (isOpen())
            ::close(descriptor_);
    }

    /// False when the process has no file descriptor left; nobody is woken then.
    bool isOpen() const { return descriptor_ >= 0; }
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
