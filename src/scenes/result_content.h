#pragma once

#include <map>
#include <variant>

#include "scenes/raw_values.h"

namespace tavrelon::scenes {

/// The pixel size of a wanted image; the raw value spells it out.
enum class ImageSize { small, medium, large, wide, tall };

template <>
inline constexpr std::array rawValues<ImageSize>{
    RawValue{ImageSize::small, "256x256"},   RawValue{ImageSize::medium, "512x512"},
    RawValue{ImageSize::large, "1024x1024"}, RawValue{ImageSize::wide, "1792x1024"},
    RawValue{ImageSize::tall, "1024x1792"},
};

/// A wanted image in words.
struct ImageSpec {
    QString prompt = {};
    ImageSize size = ImageSize::medium;
    std::optional<QString> style = {};
    std::optional<QString> negativePrompt = {};

    bool operator==(const ImageSpec&) const = default;
};

using StructuredContent = std::map<QString, QString>;

/// An answer: a text, an image or named texts.
using ResultContent = std::variant<QString, ImageSpec, StructuredContent>;

text::Json toJson(const ImageSpec& spec);
text::Json toJson(const ResultContent& content);

/// Both throw `text::JsonError`.
ImageSpec imageSpecFrom(const text::Json& json);
ResultContent resultContentFrom(const text::Json& json);

}  // namespace tavrelon::scenes
