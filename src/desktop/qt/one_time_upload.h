#pragma once

#include <QIODevice>
#include <algorithm>

namespace tavrelon::desktop {

/// The body of a request. When a connection ends without an answer Qt sends the request again, unasked, and a model
/// would be asked and paid twice; from this device it gets the body a second time only where the first went to a
/// connection that had been kept: a server may end such a one before it sees what is on its way there.
class OneTimeUpload : public QIODevice {
 public:
    explicit OneTimeUpload(QByteArray body) : body_(std::move(body)) {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    /// A connection is being made for the request.
    void noteNewConnection() { isOnKeptConnection_ = false; }

    /// Whether the connection ended when a part of the body was sent, not all.
    bool wasCutShort() const { return !isSpent_ && read_ > 0 && !atEnd(); }
    /// Whether the body was wanted a second time in vain.
    bool wasRefused() const { return isSpent_ && wasWantedAgain_; }

    bool isSequential() const override { return true; }
    bool atEnd() const override { return read_ == body_.size(); }
    qint64 size() const override { return body_.size(); }
    qint64 bytesAvailable() const override { return body_.size() - read_; }

    /// A redirect winds back too, and then reads nothing.
    bool reset() override {
        isSpent_ = !isOnKeptConnection_;
        read_ = 0;
        return true;
    }

 protected:
    qint64 readData(char* data, qint64 most) override {
        wasWantedAgain_ |= isSpent_;
        if (isSpent_)
            return -1;
        const auto count = std::min(most, bytesAvailable());
        std::copy_n(body_.constData() + read_, count, data);
        read_ += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

 private:
    QByteArray body_;
    qint64 read_ = 0;
    bool isOnKeptConnection_ = true;
    bool isSpent_ = false;
    bool wasWantedAgain_ = false;
};

}  // namespace tavrelon::desktop
