#include "desktop/documents/picture_process_decoder.h"

#include <QtEndian>

#include "desktop/documents/reader_process.h"
#include "platform/picture_header.h"

namespace tavrelon::desktop {

using document_process::pictureHead;
using platform::Image;

namespace {

constexpr qint64 outputCap = pictureHead + 4 * platform::picturePixelCap;

/// The process may be in the hands of the picture by now: only so many bytes of the size that it names are an answer.
std::optional<Image> imageOf(const std::shared_ptr<const QByteArray>& output) {
    if (output->size() < pictureHead)
        return std::nullopt;
    const auto width = qFromLittleEndian<quint32>(output->constData());
    const auto height = qFromLittleEndian<quint32>(output->constData() + 4);
    const auto size = output->size() - pictureHead;
    if (!platform::isPictureSize(width, height) || size != qint64{4} * width * height)
        return std::nullopt;
    return Image{static_cast<int>(width), static_cast<int>(height),
                 QByteArray::fromRawData(output->constData() + pictureHead, size), output};
}

}  // namespace

async::Task<std::optional<Image>> PictureProcessDecoder::decode(QByteArray picture) {
    if (!platform::pictureHeader(picture))
        co_return std::nullopt;
    auto answer =
        co_await runReader(loop_, {program_, {document_process::picture}, std::move(picture), outputCap, limit_});
    if (answer.exit != document_process::Exit::Success)
        co_return std::nullopt;
    co_return imageOf(std::make_shared<const QByteArray>(std::move(answer.output)));
}

}  // namespace tavrelon::desktop
