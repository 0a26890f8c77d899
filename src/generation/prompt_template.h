#pragma once

#include <QLatin1StringView>
#include <array>
#include <optional>

#include "text/json.h"

/// The structured description of a picture that a model writes, and the phrases made of it. Pure.
namespace tavrelon::generation {

inline constexpr std::array<const char*, 7> promptTemplateSectionOrder{
    "meta", "scene", "lighting", "camera_perspective", "subject", "environmental_details", "aesthetic_intent"};

/// Whether at least two of the known sections are there.
bool isStructuredTemplate(const text::Json& object);

/// All phrases of the description, known sections first, joined with ", "; absent when there is none.
std::optional<QString> flattenPromptTemplate(const text::Json& object);

/// Whether the document nests so little that it may be handled level by level. A hostile one may not.
bool nestsAtMost(const text::Json& json, int levels);
inline constexpr int deepestTemplate = 64;

}  // namespace tavrelon::generation
