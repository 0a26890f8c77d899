#include "desktop/qt/x_settings.h"

#include <gtest/gtest.h>

#include <QDataStream>
#include <QIODevice>

namespace tavrelon::desktop {

namespace {

/// A colour, a string and two whole numbers, as a settings daemon writes them.
QByteArray document(QDataStream::ByteOrder order, qint32 animations) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(order);
    const auto name = [&](quint8 kind, const QByteArray& text) {
        stream << kind << quint8(0) << quint16(text.size());
        stream.writeRawData(text + QByteArray((4 - text.size() % 4) % 4, 0), int((text.size() + 3) / 4 * 4));
        stream << quint32(7);
    };
    stream << quint8(order == QDataStream::BigEndian ? 1 : 0) << quint8(0) << quint8(0) << quint8(0);
    stream << quint32(1) << quint32(4);
    name(2, "Net/Colour");
    stream << quint64(0);
    name(1, "Net/ThemeName");
    stream << quint32(7);
    stream.writeRawData("Adwaita\0", 8);
    name(0, "Gtk/CursorBlink");
    stream << qint32(1);
    name(0, "Gtk/EnableAnimations");
    stream << animations;
    return bytes;
}

}  // namespace

TEST(XSettings, AnIntegerIsFoundInEitherOrderOfBytesAndNothingIsReadPastTheEnd) {
    for (const auto order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
        EXPECT_EQ(xSetting(document(order, 0), "Gtk/EnableAnimations"), 0);
        EXPECT_EQ(xSetting(document(order, 1), "Gtk/EnableAnimations"), 1);
        EXPECT_EQ(xSetting(document(order, 1), "Net/ThemeName"), std::nullopt);
        const auto whole = document(order, 0);
        for (qsizetype size = 0; size < whole.size(); ++size)
            EXPECT_EQ(xSetting(whole.first(size), "Gtk/EnableAnimations"), std::nullopt) << size;
    }
    EXPECT_EQ(xSetting(QByteArray(64, '\xff'), "Gtk/EnableAnimations"), std::nullopt);
}

}  // namespace tavrelon::desktop
