#pragma once

#include <QString>
#include <exception>

#include "text/localized_text.h"

namespace tavrelon::text {

/// The base of the services' errors: a failure with a description that the user may read. What is logged is English.
class LocalizedError : public std::exception {
 public:
    explicit LocalizedError(LocalizedText description)
        : description_(std::move(description)), what_(description_.english.toStdString()) {}

    const LocalizedText& description() const { return description_; }
    const QString& localizedDescription() const { return description_.english; }
    const char* what() const noexcept override { return what_.c_str(); }

 private:
    LocalizedText description_;
    std::string what_;
};

/// What the log says of any error.
inline QString localizedDescription(const std::exception& error) {
    return QString::fromUtf8(error.what());
}

/// What the user may read of any error.
inline LocalizedText descriptionOf(const std::exception& error) {
    const auto* known = dynamic_cast<const LocalizedError*>(&error);
    return known ? known->description() : LocalizedText(localizedDescription(error));
}

}  // namespace tavrelon::text
