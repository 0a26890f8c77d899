#include "desktop/qt/x_settings.h"

#include <QDataStream>
#include <QIODevice>
#include <algorithm>

namespace tavrelon::desktop {

namespace {

/// A string, and with it the bytes that fill it up to a multiple of four. What the document lacks is left out.
QByteArray string(QDataStream& stream, qint64 size) {
    constexpr int unit = 4;
    auto bytes = stream.device()->read(std::min(size, stream.device()->bytesAvailable()));
    stream.skipRawData(static_cast<int>((unit - size % unit) % unit));
    return bytes;
}

template <typename Number>
Number number(QDataStream& stream) {
    Number value{};
    stream >> value;
    return value;
}

enum Kind : quint8 { Integer, String, Colour };

}  // namespace

/// As XSETTINGS lays it out: the order of bytes, the document's number and how many settings there are; of each
/// its kind, its name, when it changed last, and its value.
std::optional<qint32> xSetting(const QByteArray& document, QByteArrayView name) {
    QDataStream stream(document);
    stream.setByteOrder(number<quint8>(stream) == 1 ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream.skipRawData(3 + 4);
    const auto count = number<quint32>(stream);
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        const auto kind = number<quint8>(stream);
        stream.skipRawData(1);
        const auto found = string(stream, number<quint16>(stream));
        stream.skipRawData(4);
        if (kind == Integer) {
            const auto value = number<qint32>(stream);
            if (found == name && stream.status() == QDataStream::Ok)
                return value;
        } else if (kind == String) {
            string(stream, number<quint32>(stream));
        } else if (kind == Colour) {
            stream.skipRawData(4 * 2);
        } else {
            return std::nullopt;  // of a length that nobody knows
        }
    }
    return std::nullopt;
}

}  // namespace tavrelon::desktop
