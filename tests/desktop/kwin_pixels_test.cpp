#include <gtest/gtest.h>

#include "desktop/kwin/screen/kwin_pixels.h"

namespace tavrelon::desktop {
namespace {

/// Two by two pixels of 32 bits each, with four bytes of padding behind each row.
constexpr KWinPixels small{2, 2, 12, QImage::Format_ARGB32_Premultiplied};

QByteArray bytesOf(const std::vector<QRgb>& pixels) {
    return {reinterpret_cast<const char*>(pixels.data()), static_cast<qsizetype>(pixels.size() * sizeof(QRgb))};
}

TEST(KWinPixels, AreOpaqueAndInTheirRowsWhateverLiesBehindThese) {
    constexpr QRgb padding = 0xff00ff00;
    const auto picture =
        pictureIn(headOf(small) + bytesOf({0xffff0000, 0x80800000, padding, 0x00000000, 0xff0000ff, padding}));
    ASSERT_EQ(picture.size(), QSize(2, 2));
    EXPECT_EQ(picture.format(), QImage::Format_RGB32);
    EXPECT_EQ(picture.pixel(0, 0), 0xffff0000);
    EXPECT_EQ(picture.pixel(1, 0), 0xffff7f7f) << "half of it, over white";
    EXPECT_EQ(picture.pixel(0, 1), 0xffffffff);
    EXPECT_EQ(picture.pixel(1, 1), 0xff0000ff);
}

TEST(KWinPixels, ThatDoNotFitTheirHeadAreNoPicture) {
    const QByteArray pixels(24, '\x7f');
    ASSERT_FALSE(pictureIn(headOf(small) + pixels).isNull());
    EXPECT_TRUE(pictureIn({}).isNull());
    EXPECT_TRUE(pictureIn(headOf(small)).isNull());
    EXPECT_TRUE(pictureIn(headOf(small) + pixels.chopped(1)).isNull()) << "cut off";
    for (const auto& odd : {KWinPixels{4, 2, 12, 5}, KWinPixels{2, 2, 12, 0}, KWinPixels{2, 2, 12, 4000},
                            KWinPixels{0, 2, 12, 5}, KWinPixels{0xffffffff, 2, 12, 5}, KWinPixels{2, 0, 12, 5}})
        EXPECT_TRUE(pictureIn(headOf(odd) + pixels).isNull());
    EXPECT_EQ(pixelsToldBy({{QStringLiteral("width"), 2U}, {QStringLiteral("height"), 2U}}), std::nullopt);
}

}  // namespace
}  // namespace tavrelon::desktop
