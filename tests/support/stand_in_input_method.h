#pragma once

#include <QString>
#include <QThread>
#include <memory>
#include <optional>

namespace tavrelon::testing {

/// An input method framework on the session bus, under the names of Fcitx 5 or IBus, served from a thread of its own.
/// An IBus one is to be found through the address of the session bus.
class StandInInputMethod {
 public:
    enum class Framework { Fcitx, IBus };

    explicit StandInInputMethod(Framework framework);
    StandInInputMethod(const StandInInputMethod&) = delete;
    StandInInputMethod& operator=(const StandInInputMethod&) = delete;
    /// Ends the framework; its name goes from the bus.
    ~StandInInputMethod();

    /// The name of the method in use.
    void use(const QString& method);

    /// Questions get no answer from now on; or get one again.
    void hang(bool hangs);

 private:
    class Service;

    void end();

    QThread thread_;
    std::unique_ptr<Service> service_;
};

}  // namespace tavrelon::testing
