#pragma once

#include <QByteArray>
#include <optional>

#include "async/task.h"
#include "platform/image.h"
#include "platform/pasteboard.h"

namespace tavrelon::platform {

/// Decodes, encodes and scales pictures. Main thread; the work is done on another one.
class ImageCodec {
 public:
    virtual ~ImageCodec() = default;

    /// A picture from elsewhere, decoded out of harm's way (picture_decoder.h) and encoded anew in the forms that
    /// applications paste. The first is PNG. Absent when the bytes are no picture of the formats and bounds told there.
    virtual async::Task<std::optional<PasteboardItem>> pasteboardItem(QByteArray image) = 0;

    /// The picture as JPEG; `quality` goes from 0 to 1. Absent when it cannot be encoded.
    virtual async::Task<std::optional<QByteArray>> jpegRepresentation(Image image, double quality) = 0;

    /// The picture at another size, filtered. Absent when there is no such size or no memory for it.
    virtual async::Task<std::optional<Image>> scaled(Image image, int width, int height) = 0;
};

}  // namespace tavrelon::platform
