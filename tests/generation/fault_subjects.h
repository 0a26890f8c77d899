#pragma once

#include "generation/ai_service.h"
#include "generation/fault_catalogue.h"

namespace tavrelon::testing {

/// One of the calls that can go wrong, and the request that leads to it.
struct FaultSubject {
    enum class Place : std::uint8_t {
        NvidiaChat,
        GatewayChat,
        GLMChat,
        CustomGateway,
        OllamaCloud,
        OllamaLocal,
        ImageGet,
        GLMImages,
        Download
    };
    /// Where the failure of the call comes to light.
    enum class Told : std::uint8_t { ToTheUser, ToTheUserWhenAlone, InTheLog };

    Place place;
    QString title;
    QString base;  ///< the path in the address that is configured
    QString path;  ///< a part of the call's path that no other call has
    QByteArray key;
    AnswerShape shape;
    QString next;  ///< what is asked after a failure; empty when the failure is the end
    Told told;
    QString logged{};  ///< the head of the line in the log, for what is told only there
};

/// All of them.
const std::vector<FaultSubject>& faultSubjects();

/// The one that a request with this path belongs to; null for a path of none.
const FaultSubject* faultSubjectOf(const QString& path);

/// What every key begins with that the services of a subject have.
inline constexpr auto secretPrefix = QLatin1StringView("secret-");
std::optional<QString> secretKeyOf(QLatin1StringView service);

/// What a user asks for, and how the gateway is set up, so that the call of this place is made. `alone` leaves out what
/// would be asked next.
generation::GenerationRequest requestFor(FaultSubject::Place place);
void configureFor(FaultSubject::Place place, generation::PollinationsService& gateway, const QString& address,
                  bool alone);

}  // namespace tavrelon::testing
