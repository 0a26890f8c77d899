#include "desktop/gnome/shell_connection.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "desktop/linux/process/socket_in_sight.h"

namespace tavrelon::desktop {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds welcomeLimit{1000};
/// Far over the picture of a large screen.
constexpr qsizetype mostBytes = 128 << 20;

const QString welcome = QStringLiteral("welcome");

}  // namespace

std::expected<std::shared_ptr<ShellConnection>, QString> ShellConnection::open() {
    const auto path = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/tavrelon-gnome-shell");
    auto inSight = SocketInSight::connect(path);
    if (!inSight)
        return std::unexpected(QStringLiteral(
            "Tavrelon's extension of GNOME's shell is not running; the dashboard's page Permissions installs it."));
    std::shared_ptr<ShellConnection> connection(new ShellConnection(inSight->takeSocket()));
    if (!connection->isWelcome())
        return std::unexpected(
            QStringLiteral("Tavrelon's extension of GNOME's shell serves another program than this one: its file "
                           "'program' names it."));
    return connection;
}

ShellConnection::ShellConnection(int socket)
    : socket_(socket), notifier_(std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read)) {
    ::fcntl(socket_, F_SETFL, O_NONBLOCK);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { read(); });
}

ShellConnection::~ShellConnection() {
    notifier_.reset();
    if (socket_ >= 0)
        ::close(socket_);
}

bool ShellConnection::isWelcome() {
    const auto until = Clock::now() + welcomeLimit;
    while (socket_ >= 0 && !untold_.contains(welcome) && wait(POLLIN, until))
        read();
    return untold_.contains(welcome);
}

std::optional<text::Json> ShellConnection::ask(const char* what, text::Json question) {
    const auto until = Clock::now() + limit;
    std::optional<text::Json> answer;
    bool isAnswered = false;
    const auto id = send(what, std::move(question));
    if (id == 0)
        return std::nullopt;
    open_[id] = [&](const std::optional<text::Json>& given) {
        answer = given;
        isAnswered = true;
    };
    while (!isAnswered && socket_ >= 0 && wait(POLLIN, until))
        read();
    open_.erase(id);
    return answer;
}

void ShellConnection::askLater(const char* what, text::Json question, Answered answered) {
    if (const auto id = send(what, std::move(question)))
        open_[id] = std::move(answered);
    else
        answered(std::nullopt);
}

void ShellConnection::tell(const char* what, text::Json question) {
    send(what, std::move(question));
}

void ShellConnection::listen(const QString& event, Told told) {
    const auto& listener = listeners_[event] = std::move(told);
    if (const auto missed = untold_.extract(event))
        listener(missed.mapped());
}

/// 0 where nobody is there.
std::uint64_t ShellConnection::send(const char* what, text::Json question) {
    question["id"] = ++last_;
    question["ask"] = what;
    return socket_ >= 0 && write(text::compactJson(question) + '\n') ? last_ : 0;
}

bool ShellConnection::write(const QByteArray& bytes) {
    const auto until = Clock::now() + limit;
    for (qsizetype written = 0; written < bytes.size();) {
        const auto count = ::send(socket_, bytes.constData() + written,
                                  static_cast<std::size_t>(bytes.size() - written), MSG_NOSIGNAL);
        if (count > 0) {
            written += count;
        } else if (count == 0 || (errno != EINTR && (errno != EAGAIN || !wait(POLLOUT, until)))) {
            // Half a line would spoil the next.
            if (written > 0)
                end();
            return false;
        }
    }
    return true;
}

bool ShellConnection::wait(short events, Clock::time_point until) const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    pollfd wait{socket_, events, 0};
    return left.count() > 0 && ::poll(&wait, 1, static_cast<int>(left.count())) > 0;
}

void ShellConnection::read() {
    std::array<char, 65536> piece{};
    bool isOpen = true;
    for (;;) {
        const auto count = ::recv(socket_, piece.data(), piece.size(), 0);
        if (count > 0) {
            received_.append(piece.data(), count);
        } else if (count == 0 || errno != EINTR) {
            isOpen = count < 0 && errno == EAGAIN && received_.size() <= mostBytes;
            break;
        }
    }
    for (qsizetype end = received_.indexOf('\n'); end >= 0; end = received_.indexOf('\n')) {
        const auto line = received_.first(end);
        received_.remove(0, end + 1);
        hear(line);
    }
    if (!isOpen)
        end();
}

void ShellConnection::hear(const QByteArray& line) try {
    const auto message = text::parseJson(line);
    if (text::find(message, "event"))
        hearEvent(message);
    else
        hearAnswer(message);
} catch (const text::JsonError&) {
    return;  // told in another way than is known here
}

void ShellConnection::hearEvent(const text::Json& message) {
    const auto event = text::stringFrom(text::required(message, "event"));
    const auto listener = listeners_.find(event);
    if (listener != listeners_.end())
        listener->second(message);
    else
        untold_[event] = message;
}

void ShellConnection::hearAnswer(const text::Json& message) {
    const auto asked = open_.extract(static_cast<std::uint64_t>(text::integerFrom(text::required(message, "id"))));
    if (asked)
        asked.mapped()(text::find(message, "error") ? std::nullopt : std::optional(message));
}

void ShellConnection::end() {
    if (socket_ < 0)
        return;
    notifier_->setEnabled(false);
    ::close(std::exchange(socket_, -1));
    for (const auto& [id, answered] : std::exchange(open_, {}))
        answered(std::nullopt);
    hearEvent({{"event", "front"}, {"window", nullptr}});
    if (const auto gone = std::exchange(gone_, nullptr))
        gone();
}

}  // namespace tavrelon::desktop
