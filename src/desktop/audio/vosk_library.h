#pragma once

#include <QString>
#include <expected>
#include <memory>

namespace tavrelon::desktop {

struct VoskModel;
struct VoskRecognizer;

/// The functions of the Vosk library that are used, as its documentation declares them.
struct VoskFunctions {
    void (*setLogLevel)(int level) = nullptr;
    VoskModel* (*modelNew)(const char* folder) = nullptr;
    void (*modelFree)(VoskModel*) = nullptr;
    VoskRecognizer* (*recognizerNew)(VoskModel*, float sampleRate) = nullptr;
    void (*recognizerFree)(VoskRecognizer*) = nullptr;
    /// 1 when an utterance has ended, 0 while it goes on, negative on a failure.
    int (*acceptWaveform)(VoskRecognizer*, const short* samples, int count) = nullptr;
    // JSON texts; each belongs to the recogniser and lives until the next call.
    const char* (*result)(VoskRecognizer*) = nullptr;
    const char* (*partialResult)(VoskRecognizer*) = nullptr;
    const char* (*finalResult)(VoskRecognizer*) = nullptr;
};

/// A model in memory. Threads may share it.
using VoskModelPtr = std::shared_ptr<VoskModel>;

/// The library once it is loaded; it stays so. Threads may share it.
class VoskLibrary {
 public:
    /// Loads the library of that file name or path, which may take a while. The error says what is wrong with it.
    static std::expected<std::shared_ptr<VoskLibrary>, QString> load(const QString& file);

    const VoskFunctions& functions() const { return functions_; }

    /// Reads the model in that folder, which takes seconds; null when it cannot be used.
    VoskModelPtr readModel(const QString& folder) const;

 private:
    explicit VoskLibrary(const VoskFunctions& functions) : functions_(functions) {}

    VoskFunctions functions_;
};

}  // namespace tavrelon::desktop
