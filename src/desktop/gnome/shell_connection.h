#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <QString>
#include <chrono>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "text/json.h"

namespace tavrelon::desktop {

/// The connection with our extension of GNOME's shell, in lines of JSON, on a socket of its own. Main thread.
class ShellConnection {
 public:
    /// For one question and its answer.
    static constexpr std::chrono::milliseconds limit{250};

    using Told = std::function<void(const text::Json&)>;
    using Answered = std::function<void(const std::optional<text::Json>&)>;

    /// Connects so that the extension can see which program this is, which is the only one that it serves. At the
    /// start, before there is anything to know. The error is a sentence for the user.
    static std::expected<std::shared_ptr<ShellConnection>, QString> open();
    ShellConnection(const ShellConnection&) = delete;
    ShellConnection& operator=(const ShellConnection&) = delete;
    ~ShellConnection();

    /// Asks and waits; nothing past `limit`, where the extension refuses, or once it is gone. What is told meanwhile
    /// is heard.
    std::optional<text::Json> ask(const char* what, text::Json question = text::Json::object());

    /// Asks without waiting. `answered` is called once, from the event loop or from within another call, with nothing
    /// where `ask` would give nothing; never past the end of this object, which may drop it.
    void askLater(const char* what, text::Json question, Answered answered);

    /// Asks for something to be done, whatever comes of it.
    void tell(const char* what, text::Json question = text::Json::object());

    /// Whom to call when the extension tells this event; one for each. The last front window is told at once.
    void listen(const QString& event, Told told);

    /// Called once when the extension goes away, by the lock of no screen but by the user's switching it off.
    void onGone(std::function<void()> gone) { gone_ = std::move(gone); }

 private:
    explicit ShellConnection(int socket);

    bool isWelcome();
    std::uint64_t send(const char* what, text::Json question);
    bool write(const QByteArray& bytes);
    bool wait(short events, std::chrono::steady_clock::time_point until) const;
    void read();
    void hear(const QByteArray& line);
    void hearEvent(const text::Json& message);
    void hearAnswer(const text::Json& message);
    void end();

    int socket_;
    QByteArray received_;
    std::uint64_t last_ = 0;
    std::map<std::uint64_t, Answered> open_;
    std::map<QString, Told> listeners_;
    std::map<QString, text::Json> untold_;  ///< the newest of each event that nobody has listened to yet
    std::function<void()> gone_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tavrelon::desktop
