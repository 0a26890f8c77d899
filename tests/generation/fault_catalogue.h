#pragma once

#include <vector>

#include "support/stand_in_service.h"

/// All that can go wrong between a request and its answer.
namespace tavrelon::testing {

/// What a service answers when all is well.
enum class AnswerShape : std::uint8_t { ChatCompletion, GLMChat, OllamaChat, Picture, GLMImages, Download };

bool isPictureShape(AnswerShape shape);

/// A good body for the shape, with its type.
QByteArray goodBody(AnswerShape shape);
QByteArray goodType(AnswerShape shape);

struct Fault {
    /// Who gets the request: the stand-in service, or a peer that is something else.
    enum class Peer : std::uint8_t { Service, Nobody, SelfSigned, PlainText, HangsUpInHandshake, SilentInHandshake };

    QString name;
    StandInAnswer answer{};
    Peer peer = Peer::Service;
    QString address{};           ///< instead of the service's whole address
    bool dependsOnLuck = false;  ///< the network stack sees now an error and now a whole answer
};

/// The faults that a service with answers of this shape can have. `elsewhere` is the address of another host.
std::vector<Fault> faultsFor(AnswerShape shape, const QString& elsewhere);

}  // namespace tavrelon::testing
