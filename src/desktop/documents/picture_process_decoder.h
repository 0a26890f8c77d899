#pragma once

#include <QString>
#include <chrono>

#include "async/main_loop.h"
#include "platform/picture_decoder.h"

namespace tavrelon::desktop {

/// Decodes each picture in a process of its own, the confined one that also reads documents, which gives back bare
/// pixels. What its first bytes refuse starts no process.
class PictureProcessDecoder : public platform::PictureDecoder {
 public:
    static constexpr std::chrono::seconds timeLimit{10};

    /// `program` is the absolute path of tavrelon-document-reader.
    PictureProcessDecoder(async::MainLoop& loop, QString program, std::chrono::milliseconds limit = timeLimit)
        : loop_(loop), program_(std::move(program)), limit_(limit) {}

    async::Task<std::optional<platform::Image>> decode(QByteArray picture) override;

 private:
    async::MainLoop& loop_;
    QString program_;
    std::chrono::milliseconds limit_;
};

}  // namespace tavrelon::desktop
