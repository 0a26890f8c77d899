#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <optional>

#include "support/stand_in_service.h"

namespace tavrelon::testing {

/// Accepts the connections of a stand-in service. Lives on the service's thread.
class StandInListener : public QObject {
 public:
    explicit StandInListener(StandInLedger& ledger);

    /// The port, or 0 when it cannot listen.
    quint16 listenOn(quint16 port);

 private:
    StandInLedger& ledger_;
    QTcpServer server_{this};
};

/// One client: takes its requests in turn, and answers each as the ledger says.
class StandInConnection : public QObject {
 public:
    StandInConnection(QTcpSocket* socket, StandInLedger& ledger, QObject* parent);

 private:
    void readMore();
    void serveNext();
    void serve(const ReceivedRequest& request);
    void give(const ReceivedRequest& request, const StandInAnswer& answer);
    void giveRaw(const StandInAnswer& answer);
    void sendHead(int status, const HeaderList& headers, qint64 length);
    void drip(const QByteArray& body, qsizetype from, qsizetype piece, int pauseMs);
    void sendFiller(qint64 length, std::move_only_function<void()> then);
    void pumpFiller();
    void complete();
    void hangUp();
    void resetOnTheWire();

    QTcpSocket* socket_;
    StandInLedger& ledger_;
    RequestParser parser_;
    qint64 fillerLeft_ = 0;
    std::move_only_function<void()> afterFiller_;
    std::optional<std::size_t> underWay_;  ///< the ledger's index of the request that has no whole answer yet
};

}  // namespace tavrelon::testing
