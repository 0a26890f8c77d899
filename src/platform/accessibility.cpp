#include "platform/accessibility.h"

namespace tavrelon::platform {

QString axErrorName(AXError error) {
    switch (error) {
        case AXError::Success:
            return QStringLiteral("kAXErrorSuccess");
        case AXError::Failure:
            return QStringLiteral("kAXErrorFailure");
        case AXError::IllegalArgument:
            return QStringLiteral("kAXErrorIllegalArgument");
        case AXError::InvalidUIElement:
            return QStringLiteral("kAXErrorInvalidUIElement");
        case AXError::InvalidUIElementObserver:
            return QStringLiteral("kAXErrorInvalidUIElementObserver");
        case AXError::CannotComplete:
            return QStringLiteral("kAXErrorCannotComplete");
        case AXError::AttributeUnsupported:
            return QStringLiteral("kAXErrorAttributeUnsupported");
        case AXError::ActionUnsupported:
            return QStringLiteral("kAXErrorActionUnsupported");
        case AXError::NotificationUnsupported:
            return QStringLiteral("kAXErrorNotificationUnsupported");
        case AXError::NotImplemented:
            return QStringLiteral("kAXErrorNotImplemented");
        case AXError::NotificationAlreadyRegistered:
            return QStringLiteral("kAXErrorNotificationAlreadyRegistered");
        case AXError::NotificationNotRegistered:
            return QStringLiteral("kAXErrorNotificationNotRegistered");
        case AXError::APIDisabled:
            return QStringLiteral("kAXErrorAPIDisabled");
        case AXError::NoValue:
            return QStringLiteral("kAXErrorNoValue");
        case AXError::ParameterizedAttributeUnsupported:
            return QStringLiteral("kAXErrorParameterizedAttributeUnsupported");
        case AXError::NotEnoughPrecision:
            return QStringLiteral("kAXErrorNotEnoughPrecision");
        case AXError::SecureField:
            return QStringLiteral("kAXErrorSecureField");
    }
    return QStringLiteral("AXError(%1)").arg(static_cast<int>(error));
}

QString axTypeName(const AXValue& value) {
    struct Visitor {
        QString operator()(std::monostate) const { return QStringLiteral("nothing"); }
        QString operator()(const QString&) const { return QStringLiteral("string"); }
        QString operator()(const AXAttributedString&) const { return QStringLiteral("attributed string"); }
        QString operator()(const text::Utf16Range&) const { return QStringLiteral("range"); }
        QString operator()(const AXElement&) const { return QStringLiteral("element"); }
        QString operator()(const AXPoint&) const { return QStringLiteral("point"); }
        QString operator()(const AXSize&) const { return QStringLiteral("size"); }
        QString operator()(const AXRect&) const { return QStringLiteral("rectangle"); }
        QString operator()(const AXOtherValue& other) const { return other.typeName; }
    };
    return std::visit(Visitor{}, value);
}

}  // namespace tavrelon::platform
