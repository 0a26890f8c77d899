#include "desktop/wayland/sway/sway_ipc.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace tavrelon::desktop {

namespace {

const QByteArray magic = QByteArrayLiteral("i3-ipc");
constexpr qsizetype headerSize = 14;
/// Far over any tree of windows.
constexpr std::uint32_t mostBytes = 32U << 20U;

std::uint32_t numberAt(const QByteArray& bytes, qsizetype offset) {
    std::uint32_t number = 0;  // in the machine's own order
    std::memcpy(&number, bytes.constData() + offset, sizeof number);
    return number;
}

}  // namespace

QByteArray encodeSwayMessage(SwayMessage kind, const QByteArray& payload) {
    const std::array<std::uint32_t, 2> numbers{static_cast<std::uint32_t>(payload.size()),
                                               static_cast<std::uint32_t>(kind)};
    return magic + QByteArray(reinterpret_cast<const char*>(numbers.data()), sizeof numbers) + payload;
}

std::expected<std::optional<SwayAnswer>, QString> SwayMessageReader::next() {
    if (!bytes_.isEmpty() && !bytes_.startsWith(magic.first(std::min(bytes_.size(), magic.size()))))
        return std::unexpected(QStringLiteral("sway's socket does not speak as expected."));
    if (bytes_.size() < headerSize)
        return std::nullopt;
    const auto size = numberAt(bytes_, magic.size());
    if (size > mostBytes)
        return std::unexpected(QStringLiteral("sway's socket sends too much."));
    if (bytes_.size() < headerSize + size)
        return std::nullopt;
    SwayAnswer answer{SwayMessage{numberAt(bytes_, magic.size() + 4)}, bytes_.sliced(headerSize, size)};
    bytes_.remove(0, headerSize + size);
    return answer;
}

std::expected<std::unique_ptr<SwayIpc>, QString> SwayIpc::open() {
    std::unique_ptr<SwayIpc> ipc(new SwayIpc);
    if (!ipc->connect())
        return std::unexpected(
            QStringLiteral("sway does not answer at SWAYSOCK, '%1'.").arg(qEnvironmentVariable("SWAYSOCK")));
    return ipc;
}

SwayIpc::~SwayIpc() {
    if (socket_ >= 0)
        ::close(socket_);
}

bool SwayIpc::connect() {
    const auto path = qgetenv("SWAYSOCK");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    if (socket_ >= 0)
        ::close(socket_);
    reader_ = {};
    socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    return socket_ >= 0 && ::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool SwayIpc::wait(short events, std::chrono::steady_clock::time_point until) const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
    pollfd wait{socket_, events, 0};
    return left.count() > 0 && ::poll(&wait, 1, static_cast<int>(left.count())) > 0;
}

bool SwayIpc::write(const QByteArray& bytes, std::chrono::steady_clock::time_point until) {
    for (qsizetype written = 0; written < bytes.size();) {
        const auto count = ::send(socket_, bytes.constData() + written,
                                  static_cast<std::size_t>(bytes.size() - written), MSG_NOSIGNAL);
        if (count > 0)
            written += count;
        else if (count == 0 || (errno != EINTR && (errno != EAGAIN || !wait(POLLOUT, until))))
            return false;
    }
    return true;
}

std::optional<std::vector<SwayAnswer>> SwayIpc::arrived() {
    std::array<char, 16384> piece{};
    bool isOpen = true;
    for (;;) {
        const auto count = ::recv(socket_, piece.data(), piece.size(), 0);
        if (count > 0) {
            reader_.add(QByteArray(piece.data(), count));
            continue;
        }
        if (count < 0 && errno == EINTR)
            continue;
        isOpen = count < 0 && errno == EAGAIN;
        break;
    }
    std::vector<SwayAnswer> answers;
    for (auto answer = reader_.next(); answer && *answer; answer = reader_.next())
        answers.push_back(**std::move(answer));
    return isOpen || !answers.empty() ? std::optional(std::move(answers)) : std::nullopt;
}

std::optional<text::Json> SwayIpc::ask(SwayMessage kind, const QByteArray& payload) {
    const auto until = std::chrono::steady_clock::now() + limit;
    if (isBroken_ && !connect())
        return std::nullopt;
    isBroken_ = !write(encodeSwayMessage(kind, payload), until);
    while (!isBroken_ && wait(POLLIN, until)) {
        const auto answers = arrived();
        isBroken_ = !answers;
        if (!answers || answers->empty())
            continue;
        try {
            return text::parseJson(answers->front().document);
        } catch (const text::JsonError&) {
            return std::nullopt;
        }
    }
    isBroken_ = true;
    return std::nullopt;
}

bool SwayIpc::run(const QString& command) {
    const auto answer = ask(SwayMessage::RunCommand, command.toUtf8());
    try {
        return answer && std::ranges::all_of(text::arrayFrom(*answer), [](const text::Json& each) {
                   return text::boolFrom(text::required(each, "success"));
               });
    } catch (const text::JsonError&) {
        return false;
    }
}

}  // namespace tavrelon::desktop
