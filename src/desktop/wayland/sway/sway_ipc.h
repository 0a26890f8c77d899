#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <vector>

#include "text/json.h"

namespace tavrelon::desktop {

/// What a message is, by the numbers of the protocol (`man 7 sway-ipc`).
enum class SwayMessage : std::uint32_t {
    RunCommand = 0,
    Subscribe = 2,
    GetOutputs = 3,
    GetTree = 4,
    GetVersion = 7,
    GetConfig = 9,
    GetBindingState = 12,
    GetInputs = 100,
    WorkspaceEvent = 0x80000000,
    ModeEvent = 0x80000002,
    BindingEvent = 0x80000005,
    InputEvent = 0x80000015,
};

struct SwayAnswer {
    SwayMessage kind;
    QByteArray document;  ///< JSON
};

QByteArray encodeSwayMessage(SwayMessage kind, const QByteArray& payload);

/// Makes messages of the bytes as they come. Any thread.
class SwayMessageReader {
 public:
    void add(const QByteArray& bytes) { bytes_ += bytes; }

    /// The next whole message. The error means that the bytes are none of this protocol; nothing more is to be read.
    std::expected<std::optional<SwayAnswer>, QString> next();

 private:
    QByteArray bytes_;
};

/// A connection with sway's own socket. The thread that uses it owns it.
class SwayIpc {
 public:
    /// For one question and its answer.
    static constexpr std::chrono::milliseconds limit{250};

    /// Connects to the socket that the environment names. The error says what is missing.
    static std::expected<std::unique_ptr<SwayIpc>, QString> open();
    SwayIpc(const SwayIpc&) = delete;
    SwayIpc& operator=(const SwayIpc&) = delete;
    ~SwayIpc();

    /// Asks and waits; nothing past `limit`, or where the answer is no JSON. After a failure it connects anew: an
    /// answer that came late would be taken for the next one's.
    std::optional<text::Json> ask(SwayMessage kind, const QByteArray& payload = {});

    /// Runs one command; false where sway refuses it.
    bool run(const QString& command);

    /// Whether the last question was not answered: the next may cost as much.
    bool isBroken() const { return isBroken_; }

    /// For events: readable when there are some.
    int descriptor() const { return socket_; }
    /// What has arrived by now; nothing once sway is gone.
    std::optional<std::vector<SwayAnswer>> arrived();

 private:
    SwayIpc() = default;

    bool connect();
    bool write(const QByteArray& bytes, std::chrono::steady_clock::time_point until);
    bool wait(short events, std::chrono::steady_clock::time_point until) const;

    int socket_ = -1;
    bool isBroken_ = false;
    SwayMessageReader reader_;
};

}  // namespace tavrelon::desktop
