#pragma once

#include <QVariantList>
#include <vector>

namespace tavrelon::ui {

/// A star: its place as fractions of the sky's width and height, its diameter in points.
struct Star {
    double x;
    double y;
    double size;
    double opacity;
};

struct ClosedRange {
    double lowest;
    double highest;
};

/// The same seed gives the same stars always.
std::vector<Star> starLayer(int starCount, ClosedRange sizeRange, ClosedRange opacityRange, quint64 seed);

/// The two layers of the dashboard's sky.
std::vector<Star> farStars();
std::vector<Star> nearStars();

/// For a view: four numbers for each star, in the order of the record.
QVariantList toVariantList(const std::vector<Star>& stars);

}  // namespace tavrelon::ui
