#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>

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
    desktop::QtImageCodec codec{loop};

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

TEST_F(ImageCodec, APictureIsOfferedAsPngAndBmpAndAPngAsItCame) {
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const auto bytesAs = [&picture](const char* format) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        picture.save(&buffer, format);
        return bytes;
    };
    const auto item = [this](const QByteArray& bytes) { return runTaskOnQt(loop, codec.pasteboardItem(bytes)); };
    picture.setText(QStringLiteral("Comment"), QStringLiteral("which a new encoding would leave out or move"));
    const auto png = bytesAs("PNG");
    EXPECT_EQ(item(png)->dataByType.front().second, png);
    const auto fromJpeg = item(bytesAs("JPEG"));
    ASSERT_EQ(fromJpeg->dataByType.size(), 2U);
    EXPECT_EQ(fromJpeg->dataByType.front().first, QStringLiteral("image/png"));
    EXPECT_GT(QImage::fromData(fromJpeg->dataByType.front().second, "PNG").pixelColor(1, 1).red(), 245);
    const auto hugeClaim = QByteArray(png).replace(16, 8, QByteArray::fromHex("0000ea600000ea60"));
    for (const auto& none : {QByteArray("no picture"), QByteArray(), png.first(png.size() / 2), hugeClaim})
        EXPECT_FALSE(item(none));
}

TEST_F(ImageCodec, WhatIsNoPictureIsAbsent) {
    EXPECT_FALSE(jpeg(Image{}, 0.7));
    EXPECT_FALSE(jpeg(Image{100, 100, QByteArray(10, 'x')}, 0.7)) << "fewer bytes than pixels";
    EXPECT_FALSE(jpeg(plainImage(70'000, 1, 'x'), 0.7)) << "wider than the format allows";
    EXPECT_FALSE(scaled(plainImage(10, 10, 'x'), 0, 5));
}

}  // namespace

}  // namespace tavrelon::testing
