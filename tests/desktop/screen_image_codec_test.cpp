#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtEndian>

#include "desktop/documents/picture_process_decoder.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/qt/qt_main_loop.h"
#include "support/fake_screen_capture.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"

namespace tavrelon::testing {

namespace {

using platform::Image;

class ImageCodec : public ::testing::Test {
 public:
    desktop::QtMainLoop loop;
    desktop::PictureProcessDecoder decoder{loop, QStringLiteral(DOCUMENT_READER)};
    desktop::QtImageCodec codec{loop, decoder};
    QTemporaryDir directory;

    auto item(const QByteArray& bytes) { return runTaskOnQt(loop, codec.pasteboardItem(bytes)); }
    static QByteArray encoded(const QImage& picture, const char* format) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        EXPECT_TRUE(picture.save(&buffer, format)) << format;
        return bytes;
    }
    /// The beginning of a PNG of that size.
    static QByteArray hugePng(quint32 width, quint32 height) {
        auto bytes = encoded(QImage(1, 1, QImage::Format_RGB32), "PNG");
        qToBigEndian(width, bytes.data() + 16);
        qToBigEndian(height, bytes.data() + 20);
        return bytes;
    }
    auto jpeg(const Image& image, double quality) {
        return runTaskOnQt(loop, codec.jpegRepresentation(image, quality));
    }
    auto scaled(const Image& image, int width, int height) {
        return runTaskOnQt(loop, codec.scaled(image, width, height));
    }

    /// Columns of black and white, each one pixel wide, below a blue half.
    static Image stripes(int width, int height) {
        auto image = plainImage(width, height, 0);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                auto* const bytes = image.pixels.data() + 4 * (y * width + x);
                if (y < height / 2)
                    bytes[0] = static_cast<char>(0xFF);
                else if (x % 2 == 1)
                    bytes[0] = bytes[1] = bytes[2] = static_cast<char>(0xFF);
            }
        return image;
    }
};

TEST_F(ImageCodec, JpegKeepsColoursAndFollowsTheQuality) {
    const auto image = stripes(200, 100);
    const auto good = jpeg(image, 0.9);
    const auto poor = jpeg(image, 0.1);
    ASSERT_TRUE(good && poor);
    EXPECT_LT(poor->size(), good->size());
    const auto decoded = QImage::fromData(*good, "JPEG");
    ASSERT_EQ(decoded.size(), QSize(200, 100));
    const auto above = decoded.pixelColor(100, 20);
    EXPECT_GT(above.blue(), 240);
    EXPECT_LT(above.red(), 15);
    EXPECT_TRUE(jpeg(image, 7.0)) << "a quality out of range is taken to its end";
}

TEST_F(ImageCodec, ScalingAveragesWhatFallsTogether) {
    const auto half = scaled(stripes(200, 100), 100, 50);
    ASSERT_TRUE(half);
    EXPECT_EQ(half->width, 100);
    EXPECT_EQ(half->height, 50);
    ASSERT_EQ(half->pixels.size(), 100 * 50 * 4);
    const auto* const below = reinterpret_cast<const unsigned char*>(half->pixels.constData()) + 4 * (40 * 100 + 50);
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(below[channel], 128, 12);
}

TEST_F(ImageCodec, APictureOfAServiceIsOfferedAsPngAndBmpEncodedAnew) {
    QImage red(3, 2, QImage::Format_ARGB32);
    red.fill(QColor(255, 0, 0));
    red.setText(QStringLiteral("Comment"), QStringLiteral("what else the file held"));
    for (const auto& [format, bytes] : {
             std::pair("PNG", encoded(red, "PNG")),
             std::pair("JPEG", encoded(red, "JPEG")),
             std::pair("GIF", QByteArray::fromBase64("R0lGODlhBAAEAPAAAP8AAAAAACH5BAAAAAAALAAAAAAEAAQAAAIEhI8JBQA7")),
             std::pair("WebP", QByteArray::fromBase64("UklGRjwAAABXRUJQVlA4IDAAAADQAQCdASoEAAQAAUAmJaACdLoB+AAD"
                                                      "sAD+8ut//NgVzXPv9//S4P0uD9Lg/9KQAAA=")),
         }) {
        const auto found = item(bytes);
        ASSERT_TRUE(found) << format;
        ASSERT_EQ(found->dataByType.size(), 2U) << format;
        EXPECT_EQ(found->dataByType.front().first, QStringLiteral("image/png"));
        EXPECT_EQ(found->dataByType.back().first, QStringLiteral("image/bmp"));
        const auto png = QImage::fromData(found->dataByType.front().second, "PNG");
        const auto colour = png.pixelColor(1, 1);
        EXPECT_TRUE(colour.red() > 245 && colour.green() < 10 && colour.blue() < 10) << format;
        EXPECT_TRUE(png.textKeys().isEmpty()) << format;
        EXPECT_FALSE(png.hasAlphaChannel()) << format;
    }
    red.fill(QColor(10, 20, 30, 128));
    const auto glass = item(encoded(red, "PNG"));
    ASSERT_TRUE(glass);
    EXPECT_EQ(QImage::fromData(glass->dataByType.front().second, "PNG").pixelColor(1, 1), QColor(10, 20, 30, 128));
}

TEST_F(ImageCodec, WhatIsNotOfTheFourFormatsOrTooLargeIsRefusedWithoutDecoding) {
    const auto secret = directory.filePath(QStringLiteral("secret.png"));
    const auto pipe = directory.filePath(QStringLiteral("pipe"));
    ASSERT_TRUE(QImage(4, 4, QImage::Format_RGB32).save(secret));
    ASSERT_EQ(::mkfifo(qPrintable(pipe), 0600), 0);  // who opens it waits for ever
    const auto svg = [](const QString& file) {
        return QStringLiteral(
                   "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
                   "width='4' height='4'><image xlink:href='file://%1' width='4' height='4'/></svg>")
            .arg(file)
            .toUtf8();
    };
    const QImage plain(4, 4, QImage::Format_RGB32);
    QElapsedTimer timer;
    timer.start();
    for (const auto& bytes :
         {svg(secret), svg(pipe), encoded(plain, "BMP"), encoded(plain, "PPM"), encoded(plain, "XPM"),
          QByteArray("no picture at all, but long enough for one"), QByteArray("\x89PNG\r\n\x1a\n") + svg(secret),
          hugePng(100'000, 1), hugePng(16'384, 16'384), hugePng(0, 5), QByteArray()})
        EXPECT_FALSE(item(bytes)) << bytes.left(20).data();
    EXPECT_LT(timer.elapsed(), 5'000);
}

TEST_F(ImageCodec, ADecoderThatCrashesHangsOrLiesCostsOnlyThePicture) {
    const auto png = encoded(QImage(4, 4, QImage::Format_RGB32), "PNG");
    const auto program = directory.filePath(QStringLiteral("program"));
    for (const QByteArray script : {
             "kill -SEGV $$", "exec sleep 1000", "exec cat /dev/zero", "exit 0", "exit 1",
             R"(printf '\1\0\0\0\1\0\0\0abc')",               // fewer bytes than pixels
             R"(printf '\1\0\0\0\1\0\0\0abcdefgh')",          // more
             R"(printf '\377\377\377\377\1\0\0\0abcdefgh')",  // a size that no picture has
         }) {
        QFile file(program);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("#!/bin/sh\n" + script + "\n");
        file.close();
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
        desktop::PictureProcessDecoder other(loop, program, std::chrono::seconds(1));
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(runTaskOnQt(loop, other.decode(png))) << script.data();
        EXPECT_LT(timer.elapsed(), 10'000) << script.data();
    }
    EXPECT_TRUE(item(png));
    EXPECT_FALSE(item(png.first(60))) << "cut";
}

TEST_F(ImageCodec, WhatIsNoPictureIsAbsent) {
    EXPECT_FALSE(jpeg(Image{}, 0.7));
    EXPECT_FALSE(jpeg(Image{100, 100, QByteArray(10, 'x')}, 0.7)) << "fewer bytes than pixels";
    EXPECT_FALSE(jpeg(plainImage(70'000, 1, 'x'), 0.7)) << "wider than the format allows";
    EXPECT_FALSE(scaled(plainImage(10, 10, 'x'), 0, 5));
}

}  // namespace

}  // namespace tavrelon::testing
