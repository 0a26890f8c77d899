#pragma once

#include <QByteArray>
#include <optional>

#include "platform/pasteboard.h"

namespace tavrelon::platform {

/// Decodes pictures. Main thread.
class ImageCodec {
 public:
    virtual ~ImageCodec() = default;

    /// The picture in the forms that applications paste, the best first; absent when the bytes are no picture.
    virtual std::optional<PasteboardItem> pasteboardItem(const QByteArray& image) = 0;
};

}  // namespace tavrelon::platform
