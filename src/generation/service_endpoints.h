#pragma once

#include <QString>

namespace tavrelon::generation {

/// Where the model services are, and the keys that a distributor built in. A table of constants: production takes
/// `builtIn()`, tests make their own.
struct ServiceEndpoints {
    QString pollinationsBaseURL;       ///< without a trailing "/"
    QString glmBaseURL;                ///< without a trailing "/"
    QString nvidiaChatCompletionsURL;  ///< the whole address
    QString ollamaCloudTagsURL;
    QString ollamaCloudChatURL;
    QString ollamaLocalChatURL;  ///< used when the user typed no local endpoint
    QString cloneApiBaseURL;

    QString builtInPollinationsKey;  ///< empty unless built in, like the two below
    QString builtInGLMKey;
    QString builtInNvidiaApiKey;

    /// The values that the build was configured with (the cache variables of cmake/ServiceEndpoints.cmake).
    static ServiceEndpoints builtIn();
};

}  // namespace tavrelon::generation
