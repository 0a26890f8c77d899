#include "ui/dashboard/star_layer.h"

namespace tavrelon::ui {

namespace {

/// A linear congruential generator modulo 2^64, of whose states the upper 53 bits are a fraction.
class StarGenerator {
 public:
    explicit StarGenerator(quint64 seed) : state_(seed) {}

    double next(ClosedRange range) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        constexpr int surplusBits = 64 - 53;
        constexpr double unit = 1.0 / static_cast<double>(1ULL << 53);
        return range.lowest + static_cast<double>(state_ >> surplusBits) * unit * (range.highest - range.lowest);
    }

 private:
    quint64 state_;
};

constexpr ClosedRange whole{0, 1};
constexpr ClosedRange starOpacity{0.25, 0.7};

}  // namespace

std::vector<Star> starLayer(int starCount, ClosedRange sizeRange, ClosedRange opacityRange, quint64 seed) {
    StarGenerator generator(seed);
    std::vector<Star> stars;
    for (int count = 0; count < starCount; ++count) {
        const double x = generator.next(whole);
        const double y = generator.next(whole);
        const double size = generator.next(sizeRange);
        stars.push_back({x, y, size, generator.next(opacityRange)});
    }
    return stars;
}

std::vector<Star> farStars() {
    return starLayer(120, {0.6, 2.2}, starOpacity, 42);
}

std::vector<Star> nearStars() {
    return starLayer(45, {1.8, 3.6}, starOpacity, 77);
}

QVariantList toVariantList(const std::vector<Star>& stars) {
    QVariantList list;
    for (const auto& star : stars)
        list << star.x << star.y << star.size << star.opacity;
    return list;
}

}  // namespace tavrelon::ui
