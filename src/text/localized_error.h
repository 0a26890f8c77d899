#pragma once

#include <QString>
#include <exception>

namespace tavrelon::text {

/// The base of the services' errors: a failure with a description that the user may read.
class LocalizedError : public std::exception {
 public:
    explicit LocalizedError(QString description)
        : localizedDescription_(std::move(description)), what_(localizedDescription_.toStdString()) {}

    const QString& localizedDescription() const { return localizedDescription_; }
    const char* what() const noexcept override { return what_.c_str(); }

 private:
    QString localizedDescription_;
    std::string what_;
};

/// What the user may read of any error.
inline QString localizedDescription(const std::exception& error) {
    return QString::fromUtf8(error.what());
}

}  // namespace tavrelon::text
