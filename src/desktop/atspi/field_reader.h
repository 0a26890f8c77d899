#pragma once

#include <optional>

#include "desktop/atspi/atspi_calls.h"

namespace tavrelon::desktop::atspi {

/// What an element can do.
struct FieldDescription {
    QStringList interfaces;
    quint32 role = 0;
    Toolkit toolkit;

    bool has(const char* interface) const { return interfaces.contains(QLatin1String(interface)); }
};

/// What a field holds. The selection is in UTF-16 units of the value, and absent where the field has none to tell of.
struct FieldContents {
    QString value;
    std::optional<text::Utf16Range> selection;
    bool isTerminal = false;
};

/// Reads a field. Main thread; within the allowance of `calls`.
class FieldReader {
 public:
    FieldReader(AtspiCalls& calls, AtspiDirectory& directory) : calls_(calls), directory_(directory) {}

    std::expected<FieldDescription, platform::AXError> describe(const ObjectReference& field);

    /// `AttributeUnsupported` for an element without text, `SecureField` for a password, which is not even asked for,
    /// `NoValue` for a selection that goes over several elements.
    std::expected<FieldContents, platform::AXError> read(const ObjectReference& field,
                                                         const FieldDescription& description);

    std::expected<QString, platform::AXError> readText(const ObjectReference& field, const Toolkit& toolkit);

 private:
    /// Whether the selection of a paragraph goes on in the one before or behind it.
    bool goesOn(const ObjectReference& paragraph);

    AtspiCalls& calls_;
    AtspiDirectory& directory_;
};

}  // namespace tavrelon::desktop::atspi
