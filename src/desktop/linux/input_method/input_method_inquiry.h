#pragma once

#include <QDBusConnection>
#include <QString>
#include <QVariant>
#include <optional>

namespace tavrelon::desktop {

/// Where this session's IBus listens now; empty without one.
QString ibusAddressNow();

/// The connections to the input method frameworks of this session. The thread that uses it owns it; a question blocks
/// it for `answerLimit` and more where a framework hangs.
class InputMethodInquiry {
 public:
    static constexpr int answerLimitMs = 500;

    InputMethodInquiry();
    InputMethodInquiry(const InputMethodInquiry&) = delete;
    InputMethodInquiry& operator=(const InputMethodInquiry&) = delete;
    ~InputMethodInquiry();

    /// Whether a composing input method is in use; false where no framework runs.
    bool isComposing();

 private:
    std::optional<QVariant> askFcitx(const char* method);
    std::optional<QString> ibusEngine();
    bool connectToIBus();

    QString name_;
    QString ibusAddress_;
};

}  // namespace tavrelon::desktop
