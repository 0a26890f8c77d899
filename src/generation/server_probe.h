#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "async/task.h"
#include "platform/http_session.h"

namespace tavrelon::generation {

/// Where a model server on this machine usually listens.
struct ServerPlace {
    enum class Kind { OpenAI, Ollama, LMStudio };  ///< how it tells what its models can do

    QString title;    ///< as users know it
    QString baseURL;  ///< without a trailing "/"
    Kind kind = Kind::OpenAI;
};

struct ServedModel {
    QString name;
    bool isTextOnly = false;  ///< the server says that it takes no pictures; one that says nothing may take them
    bool operator==(const ServedModel&) const = default;
};

struct LocalServer {
    QString title;
    QString baseURL;
    std::vector<ServedModel> models;  ///< never empty
};

/// The loopback places of Ollama, llama.cpp and LM Studio, by the ports of their documents.
const std::vector<ServerPlace>& usualServerPlaces();

/// Asks a server for its models by `/v1/models`, which all of them know. Absent where nobody listens, what answers is
/// no model server, has no model or sends us elsewhere, or one question takes longer than 300 ms. Names beyond the
/// first 50 are left out.
async::Task<std::optional<LocalServer>> probe(platform::HttpSession& session, ServerPlace place);

}  // namespace tavrelon::generation
