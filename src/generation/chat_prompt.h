#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

namespace tavrelon::generation {

/// What a model is asked, whatever its protocol.
struct ChatPrompt {
    QString system;
    QString user;
    std::optional<QByteArray> image{};  ///< JPEG
    qint64 maxTokens = 0;
    float temperature = 0;
};

/// Whether the reply shall be a JSON object. The NVIDIA and Ollama protocols have no such mode.
enum class JsonMode : std::uint8_t { Off, On };

/// Whether an image that is there is sent, or dropped without a word.
enum class ImageCapability : std::uint8_t { No, Yes };

/// Whether the NVIDIA model thinks as the user's setting and the prompt say, or not at all.
enum class Thinking : std::uint8_t { AsConfigured, ForcedOff };

/// Whether an image prompt must keep clear of indecent content.
enum class PromptSafety : std::uint8_t { NotDemanded, Demanded };

}  // namespace tavrelon::generation
