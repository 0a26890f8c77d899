#pragma once

#include <QString>
#include <cstdint>
#include <expected>
#include <functional>
#include <variant>

#include "text/characters.h"

namespace tavrelon::platform {

/// Why an accessibility call failed. The numbers appear in log lines and are fixed.
enum class AXError : int {
    Success = 0,
    Failure = -25200,
    IllegalArgument = -25201,
    InvalidUIElement = -25202,
    InvalidUIElementObserver = -25203,
    CannotComplete = -25204,
    AttributeUnsupported = -25205,
    ActionUnsupported = -25206,
    NotificationUnsupported = -25207,
    NotImplemented = -25208,
    NotificationAlreadyRegistered = -25209,
    NotificationNotRegistered = -25210,
    APIDisabled = -25211,
    NoValue = -25212,
    ParameterizedAttributeUnsupported = -25213,
    NotEnoughPrecision = -25214,
    SecureField = 1,  ///< the element holds a password, of which nothing is told
};

/// The error's name in log lines, as "kAXErrorNoValue"; "AXError(<number>)" for a number without a name.
QString axErrorName(AXError error);

/// An attribute of an element.
enum class AXAttribute {
    FocusedUIElement,          ///< of the system-wide element or of an application: an element
    FocusedApplication,        ///< of the system-wide element: an element
    FocusedWindow,             ///< of an application: an element
    Title,                     ///< of a window: a string
    SelectedText,              ///< a string; the only attribute that can be set: it replaces the selection
    SelectedTextRange,         ///< a range in UTF-16 units of Value, whatever the toolkit counts in
    Value,                     ///< the whole text
    AttributedStringForRange,  ///< parameterised by a range in UTF-16 units: a string
    BoundsForRange,            ///< parameterised likewise: the rectangle of the text, or of the caret of an empty range
    Position,                  ///< the upper left corner of the element: a point
    Size,                      ///< of the element: a size
};

/// A handle to an element of some application. It stays valid as a value when the element is gone; calls then answer
/// `InvalidUIElement`.
struct AXElement {
    enum class Kind { SystemWide, Application, Window, Object };

    Kind kind = Kind::SystemWide;
    qint64 processIdentifier = 0;  ///< of Application and Window
    QString busName;               ///< of Object: the platform's address of the element, opaque to callers
    QString path;
    bool operator==(const AXElement&) const = default;
};

/// A text that came with attributes; only its characters are kept.
struct AXAttributedString {
    QString plainText;
    bool operator==(const AXAttributedString&) const = default;
};

/// Places and sizes in pixels of the screen, from its upper left corner.
struct AXPoint {
    double x = 0;
    double y = 0;
    bool operator==(const AXPoint&) const = default;
};
struct AXSize {
    double width = 0;
    double height = 0;
    bool operator==(const AXSize&) const = default;
};
struct AXRect {
    AXPoint origin;
    AXSize size;
    bool operator==(const AXRect&) const = default;

    bool isEmpty() const { return !(size.width > 0 && size.height > 0); }
};

/// A value of a type that no caller understands.
struct AXOtherValue {
    QString typeName;
    bool operator==(const AXOtherValue&) const = default;
};

/// `monostate` is a value that is present but empty.
using AXValue = std::variant<std::monostate, QString, AXAttributedString, text::Utf16Range, AXElement, AXPoint, AXSize,
                             AXRect, AXOtherValue>;

/// The value's type, for log lines.
QString axTypeName(const AXValue& value);

/// Stands in an element's text for what is no text, or has its text in an element of its own.
inline constexpr QChar axEmbeddedObject(0xFFFC);

/// What the element with the focus is, as far as it decides what may be kept of its keys or pressed there.
enum class FocusKind : std::uint8_t {
    Unknown,  ///< nothing tells: no bus, or an application that is not on it or does not answer
    Ordinary,
    Password,  ///< nothing of it may be read, recorded, photographed or written
    Terminal,
};

/// Reads and writes the elements of other applications. Main thread. Every call is bounded: an application that does
/// not answer costs at most 250 ms in all within one turn of the main loop, and nothing afterwards until it answers
/// again; until then its calls give `CannotComplete`.
class Accessibility {
 public:
    using Result = std::expected<AXValue, AXError>;

    virtual ~Accessibility() = default;

    /// Whether this process may use accessibility and post keys at all. A missing bus is not a missing right: reads
    /// then give `APIDisabled`.
    virtual bool isProcessTrusted() const = 0;

    virtual Result copyAttribute(const AXElement& element, AXAttribute attribute) = 0;
    virtual Result copyParameterizedAttribute(const AXElement& element, AXAttribute attribute,
                                              text::Utf16Range range) = 0;

    /// `Success` only if the application was seen to hold the new text; otherwise nothing can be said of the field
    /// except that the caller must write in another way.
    virtual AXError setAttribute(const AXElement& element, AXAttribute attribute, const QString& value) = 0;

    /// Puts `text` in the place of `range`, in UTF-16 units of `Value`, if `expected` stands there. Answers as
    /// `setAttribute` does.
    virtual AXError replaceText(const AXElement& element, text::Utf16Range range, const QString& expected,
                                const QString& text) = 0;

    /// Asks anew once in each turn of the main loop. Our own windows are told of too.
    virtual FocusKind focusKind() = 0;
    bool isFocusSecure() { return focusKind() == FocusKind::Password; }

    /// Runs `handler` in a turn of its own each time an element of some application says that it has got the focus, in
    /// place of an earlier handler; an empty one ends it. Nothing is told of applications that are not on the bus, and
    /// the first news of one that has just started may be missed.
    virtual void onFocusChange(std::function<void()> handler) = 0;
};

inline AXElement axSystemWideElement() {
    return {};
}
inline AXElement axApplicationElement(qint64 processIdentifier) {
    return {AXElement::Kind::Application, processIdentifier, {}, {}};
}

}  // namespace tavrelon::platform
