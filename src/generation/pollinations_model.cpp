#include "generation/pollinations_model.h"

#include <utility>

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

struct ModelNames {
    QLatin1StringView identifier;
    QLatin1StringView display;
};

ModelNames names(PollinationsModel model) {
    switch (model) {
        case PollinationsModel::openai:
            return {"openai"_L1, "OpenAI"_L1};
        case PollinationsModel::mistral:
            return {"mistral"_L1, "Mistral"_L1};
        case PollinationsModel::gemini:
            return {"gemini"_L1, "Gemini"_L1};
        case PollinationsModel::deepseek:
            return {"deepseek"_L1, "DeepSeek"_L1};
        case PollinationsModel::nvidiaNemotron:
            return {"nvidia/nemotron-nano-12b-v2-vl"_L1, "NVIDIA Nemotron Nano 12B VL"_L1};
        case PollinationsModel::glmTextFlash:
            return {"glm-4-flash-250414"_L1, "GLM 4 Flash 250414"_L1};
        case PollinationsModel::glmVision:
            return {"glm-4.6v-flash"_L1, "GLM 4.6V Flash"_L1};
        case PollinationsModel::glmVisionFlash:
            return {"glm-4v-flash"_L1, "GLM 4V Flash"_L1};
        case PollinationsModel::zimage:
            return {"zimage"_L1, "ZImage"_L1};
        case PollinationsModel::flux:
            return {"flux"_L1, "Flux"_L1};
        case PollinationsModel::turbo:
            return {"turbo"_L1, "Turbo"_L1};
        case PollinationsModel::own:
            return {{}, "custom model"_L1};
    }
    std::unreachable();
}

}  // namespace

QString identifier(PollinationsModel model) {
    return names(model).identifier;
}

QString displayName(PollinationsModel model) {
    return names(model).display;
}

ChatProtocol chatProtocol(PollinationsModel model) {
    switch (model) {
        case PollinationsModel::nvidiaNemotron:
            return ChatProtocol::Nvidia;
        case PollinationsModel::glmTextFlash:
        case PollinationsModel::glmVision:
        case PollinationsModel::glmVisionFlash:
            return ChatProtocol::GLM;
        default:
            return ChatProtocol::Pollinations;
    }
}

QString rawValue(VisionModelPreference preference) {
    return preference == VisionModelPreference::quality ? u"quality"_s : u"speed"_s;
}

QString rawValue(OllamaMode mode) {
    return mode == OllamaMode::local ? u"local"_s : u"cloud"_s;
}

}  // namespace tavrelon::generation
