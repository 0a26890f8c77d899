#pragma once

#include <QString>
#include <cstdint>
#include <utility>

namespace tavrelon::text {

/// The languages of the interface.
enum class Language : std::uint8_t { English, Chinese };

/// A text of the program's own, as the user reads it in each language. What others wrote, as a server's complaint, is
/// the same in all.
struct LocalizedText {
    QString english;
    QString chinese;

    LocalizedText() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): what others wrote is a text for the user as it stands.
    LocalizedText(QString verbatim) : english(verbatim), chinese(std::move(verbatim)) {}
    LocalizedText(QString inEnglish, QString inChinese)
        : english(std::move(inEnglish)), chinese(std::move(inChinese)) {}

    const QString& in(Language language) const { return language == Language::English ? english : chinese; }
    bool isEmpty() const { return english.isEmpty(); }

    /// Puts `parts`, texts or plain strings, in the places of %1, %2 and so on, each in its language.
    template <typename... Parts>
    LocalizedText arg(const Parts&... parts) const {
        return {english.arg(LocalizedText(parts).english...), chinese.arg(LocalizedText(parts).chinese...)};
    }

    /// The English text stands for all.
    friend bool operator==(const LocalizedText& one, const LocalizedText& other) {
        return one.english == other.english;
    }
};

}  // namespace tavrelon::text
