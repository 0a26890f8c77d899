#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <chrono>
#include <expected>

#include "platform/screen_capture.h"

namespace tavrelon::desktop {

/// A part of what an output shows.
struct OutputRegion {
    QString output;  ///< the name that the compositor gives it
    QRect area;      ///< logical pixels, from the output's upper left corner, inside of the output
    bool operator==(const OutputRegion&) const = default;
};

/// Takes the picture, in the output's own pixels: with whatever lies there on top, and with the pointer. It has a
/// connection of its own for that long, so that a compositor that refuses ends no other. Blocks until then at most; any
/// thread.
std::expected<QImage, platform::CaptureError> takePicture(const OutputRegion& region,
                                                          std::chrono::steady_clock::time_point until);

}  // namespace tavrelon::desktop
