#include "support/stand_in_service_connection.h"

#include <sys/socket.h>

#include <QHostAddress>
#include <QTimer>
#include <algorithm>

#include "support/stand_in_service_control.h"

namespace tavrelon::testing {

StandInListener::StandInListener(StandInLedger& ledger) : ledger_(ledger) {
    connect(&server_, &QTcpServer::newConnection, this, [this] {
        while (auto* socket = server_.nextPendingConnection())
            new StandInConnection(socket, ledger_, this);
    });
}

quint16 StandInListener::listenOn(quint16 port) {
    return server_.listen(QHostAddress::LocalHost, port) ? server_.serverPort() : quint16{0};
}

StandInConnection::StandInConnection(QTcpSocket* socket, StandInLedger& ledger, QObject* parent)
    : QObject(parent), socket_(socket), ledger_(ledger) {
    socket_->setParent(this);
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(socket_, &QTcpSocket::readyRead, this, [this] { readMore(); });
    connect(socket_, &QTcpSocket::bytesWritten, this, [this] { pumpFiller(); });
    connect(socket_, &QTcpSocket::disconnected, this, [this] {
        if (underWay_)
            ledger_.markAbandoned(*underWay_);
        deleteLater();
    });
}

void StandInConnection::readMore() {
    parser_.feed(socket_->readAll());
    serveNext();
}

void StandInConnection::serveNext() {
    if (underWay_)
        return;
    switch (parser_.state()) {
        case RequestParser::State::NeedsMore:
            return;
        case RequestParser::State::Malformed:
            sendHead(400, {}, 0);
            return socket_->disconnectFromHost();
        case RequestParser::State::Complete:
            return serve(parser_.take());
    }
}

void StandInConnection::serve(const ReceivedRequest& request) {
    if (const auto control = answerControl(request, ledger_)) {
        sendHead(control->status, {{"Content-Type", "application/json"}}, control->body.size());
        socket_->write(control->body);
        return complete();
    }
    auto [index, answer] = ledger_.receive(request);
    underWay_ = index;
    if (answer.fault == StandInAnswer::Fault::Stall && !answer.raw)
        return;
    if (answer.delayMs == 0)
        return give(request, answer);
    QTimer::singleShot(answer.delayMs, this, [this, request, late = std::move(answer)] { give(request, late); });
}

void StandInConnection::give(const ReceivedRequest& request, const StandInAnswer& answer) {
    if (answer.raw)
        return giveRaw(answer);
    if (answer.fault == StandInAnswer::Fault::Reset)
        return resetOnTheWire();
    if (answer.fault == StandInAnswer::Fault::NotHttp) {
        socket_->write("220 mail.example ESMTP\r\n");
        return hangUp();
    }
    if (answer.fillerBytes > 0) {
        sendHead(answer.status, answer.headersFor({}), answer.fillerBytes);
        return sendFiller(answer.fillerBytes, [this] { complete(); });
    }
    const auto body = answer.bodyFor(request);
    const bool truncated = answer.fault == StandInAnswer::Fault::Truncate;
    sendHead(answer.status, answer.headersFor(body), body.size() + (truncated ? 100 : 0));
    if (answer.dripMs > 0)
        return drip(body, 0, std::max<qsizetype>(1, (body.size() + answer.dripPieces - 1) / answer.dripPieces),
                    answer.dripMs);
    socket_->write(body);
    if (!truncated)
        return complete();
    hangUp();
}

void StandInConnection::giveRaw(const StandInAnswer& answer) {
    socket_->write(*answer.raw);
    sendFiller(answer.fillerBytes, [this, fault = answer.fault] {
        socket_->flush();
        if (fault == StandInAnswer::Fault::Stall)
            return;
        if (fault == StandInAnswer::Fault::Reset)
            return resetOnTheWire();
        hangUp();
    });
}

void StandInConnection::sendHead(int status, const HeaderList& headers, qint64 length) {
    socket_->write("HTTP/1.1 " + QByteArray::number(status) + " Status\r\n");
    for (const auto& [name, value] : headers) {
        if (!value.isEmpty())  // an empty value leaves a header out
            socket_->write(name + ": " + value + "\r\n");
    }
    socket_->write("Content-Length: " + QByteArray::number(length) + "\r\n\r\n");
}

void StandInConnection::drip(const QByteArray& body, qsizetype from, qsizetype piece, int pauseMs) {
    socket_->write(body.sliced(from, std::min(piece, body.size() - from)));
    socket_->flush();
    if (from + piece >= body.size())
        return complete();
    QTimer::singleShot(pauseMs, this,
                       [this, body, next = from + piece, piece, pauseMs] { drip(body, next, piece, pauseMs); });
}

/// Writes as fast as the client reads, so that neither side holds what is on its way.
void StandInConnection::sendFiller(qint64 length, std::move_only_function<void()> then) {
    fillerLeft_ = length;
    afterFiller_ = std::move(then);
    pumpFiller();
}

void StandInConnection::pumpFiller() {
    constexpr qint64 piece = 256 * 1024;
    while (fillerLeft_ > 0 && socket_->bytesToWrite() < piece && socket_->state() == QTcpSocket::ConnectedState) {
        const auto length = std::min(piece, fillerLeft_);
        fillerLeft_ -= length;
        socket_->write(QByteArray(length, 'x'));
    }
    if (fillerLeft_ == 0) {
        if (auto then = std::exchange(afterFiller_, nullptr))
            then();
    }
}

void StandInConnection::complete() {
    underWay_.reset();
    QTimer::singleShot(0, this, [this] { serveNext(); });
}

void StandInConnection::hangUp() {
    underWay_.reset();
    socket_->disconnectFromHost();
}

void StandInConnection::resetOnTheWire() {
    underWay_.reset();
    const linger now{.l_onoff = 1, .l_linger = 0};
    setsockopt(static_cast<int>(socket_->socketDescriptor()), SOL_SOCKET, SO_LINGER, &now, sizeof now);
    socket_->abort();
}

}  // namespace tavrelon::testing
