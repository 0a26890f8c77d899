#pragma once

#include "platform/image_codec.h"

namespace tavrelon::desktop {

/// Decodes every format that Qt's image plug-ins know. Pictures are offered as PNG, which every application pastes,
/// and as BMP for the few old ones that take nothing else. A picture of more than 256 MiB of pixels is refused.
class QtImageCodec : public platform::ImageCodec {
 public:
    std::optional<platform::PasteboardItem> pasteboardItem(const QByteArray& image) override;
};

}  // namespace tavrelon::desktop
