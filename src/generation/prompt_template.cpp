#include "generation/prompt_template.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

#include "text/characters.h"

namespace tavrelon::generation {

using text::Json;

namespace {

QString labelFor(const std::string& key) {
    return QString::fromStdString(key).replace(u'_', u' ');
}

QString labelled(const QString& label, const QString& text) {
    return label.isEmpty() ? text : label + u' ' + text;
}

/// 30 and 30.0 both read "30".
QString numberText(const Json& number) {
    const double value = number.get<double>();
    if (number.is_number_float() && std::trunc(value) == value && std::abs(value) < 9.0e15)
        return QString::number(static_cast<qint64>(value));
    return QString::fromStdString(number.dump());
}

void collectTemplatePhrases(const Json& value, const QString& label, QStringList& phrases) {
    if (value.is_string()) {
        if (const auto text = text::trimmedOrAbsent(text::stringFrom(value)))
            phrases.push_back(labelled(label, *text));
    } else if (value.is_number()) {
        phrases.push_back(labelled(label, numberText(value)));
    } else if (value.is_array()) {
        for (const auto& element : value)
            collectTemplatePhrases(element, {}, phrases);
    } else if (value.is_object()) {
        // A label names only the last level: a text or a number under its key.
        for (const auto& [key, inner] : value.items())
            collectTemplatePhrases(inner, inner.is_string() || inner.is_number() ? labelFor(key) : QString(), phrases);
    }
}

bool isKnownSection(const std::string& key) {
    return std::ranges::any_of(promptTemplateSectionOrder, [&](const char* section) { return key == section; });
}

}  // namespace

bool isStructuredTemplate(const Json& object) {
    return std::ranges::count_if(promptTemplateSectionOrder,
                                 [&](const char* section) { return object.contains(section); }) >= 2;
}

std::optional<QString> flattenPromptTemplate(const Json& object) {
    if (!nestsAtMost(object, deepestTemplate))
        return std::nullopt;
    QStringList phrases;
    for (const char* section : promptTemplateSectionOrder) {
        if (const auto found = object.find(section); found != object.end())
            collectTemplatePhrases(*found, {}, phrases);
    }
    for (const auto& [key, value] : object.items()) {
        if (!isKnownSection(key))
            collectTemplatePhrases(value, labelFor(key), phrases);
    }
    QStringList kept;
    for (const auto& phrase : phrases) {
        if (const auto trimmed = text::trimmedOrAbsent(phrase))
            kept.push_back(*trimmed);
    }
    if (kept.isEmpty())
        return std::nullopt;
    return kept.join(QLatin1StringView(", "));
}

bool nestsAtMost(const Json& json, int levels) {
    if (!json.is_structured())
        return true;
    return levels > 0 && std::ranges::all_of(json, [levels](const Json& one) { return nestsAtMost(one, levels - 1); });
}

}  // namespace tavrelon::generation
