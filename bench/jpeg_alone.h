#pragma once

#include "platform/image.h"

namespace tavrelon::bench {

/// The size in bytes of the picture as JPEG, made by the library for it and nothing else. `quality` is of 100.
unsigned long encodeJpegAlone(const platform::Image& image, int quality);

}  // namespace tavrelon::bench
