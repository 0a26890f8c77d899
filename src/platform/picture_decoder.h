#pragma once

#include <QByteArray>
#include <optional>

#include "async/task.h"
#include "platform/image.h"

namespace tavrelon::platform {

/// Decodes pictures that did not come from this program and may be hostile: PNG, JPEG, GIF and WebP within the bounds
/// of picture_header.h. A decoding is bounded in time and memory and done outside of this process: its crash or hang is
/// a picture that cannot be decoded, and nothing else. Main thread. A dropped task ends the decoding.
class PictureDecoder {
 public:
    virtual ~PictureDecoder() = default;

    /// The pixels, of a GIF those of its first frame. The fourth byte of each is its opacity. Absent when the bytes are
    /// no such picture.
    virtual async::Task<std::optional<Image>> decode(QByteArray picture) = 0;
};

}  // namespace tavrelon::platform
