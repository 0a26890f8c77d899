#pragma once

#include <QString>
#include <cstdint>

namespace tavrelon::generation {

/// The models that the gateway knows, whatever protocol they speak.
enum class PollinationsModel : std::uint8_t {
    openai,
    mistral,
    gemini,
    deepseek,
    nvidiaNemotron,
    glmTextFlash,
    glmVision,
    glmVisionFlash,
    zimage,
    flux,
    turbo,
    own,  ///< the user's, at their own gateway; its name is in the configuration
};

enum class ChatProtocol : std::uint8_t { Pollinations, Nvidia, GLM };

/// The identifier on the wire.
QString identifier(PollinationsModel model);
QString displayName(PollinationsModel model);

/// The protocol by which a walk asks the model. An image model counts as a Pollinations one.
ChatProtocol chatProtocol(PollinationsModel model);

/// Which model goes first when an image is sent.
enum class VisionModelPreference : std::uint8_t { speed, quality };
QString rawValue(VisionModelPreference preference);

/// Where the user's Ollama server is.
enum class OllamaMode : std::uint8_t { cloud, local };
QString rawValue(OllamaMode mode);

}  // namespace tavrelon::generation
