#pragma once

#include "scenes/raw_values.h"

namespace tavrelon::scenes {

/// What kind of thing an answer is.
enum class OutputType { text, image, richPaste };

template <>
inline constexpr std::array rawValues<OutputType>{
    RawValue{OutputType::text, "text"},
    RawValue{OutputType::image, "image"},
    RawValue{OutputType::richPaste, "richPaste"},
};

}  // namespace tavrelon::scenes
