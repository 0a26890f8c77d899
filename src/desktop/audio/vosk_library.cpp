#include "desktop/audio/vosk_library.h"

#include <dlfcn.h>

#include <QFile>

namespace tavrelon::desktop {

namespace {

template <typename Function>
bool resolve(void* library, const char* name, Function*& function, QString& missing) {
    function = reinterpret_cast<Function*>(::dlsym(library, name));
    if (!function && missing.isEmpty())
        missing = QStringLiteral("it lacks ") + QString::fromLatin1(name);
    return function;
}

QString loadingError() {
    const char* const error = ::dlerror();
    return QString::fromUtf8(error ? error : "it cannot be loaded");
}

}  // namespace

std::expected<std::shared_ptr<VoskLibrary>, QString> VoskLibrary::load(const QString& file) {
    void* const library = ::dlopen(QFile::encodeName(file).constData(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return std::unexpected(loadingError());
    VoskFunctions functions;
    QString missing;
    resolve(library, "vosk_set_log_level", functions.setLogLevel, missing);
    resolve(library, "vosk_model_new", functions.modelNew, missing);
    resolve(library, "vosk_model_free", functions.modelFree, missing);
    resolve(library, "vosk_recognizer_new", functions.recognizerNew, missing);
    resolve(library, "vosk_recognizer_free", functions.recognizerFree, missing);
    resolve(library, "vosk_recognizer_accept_waveform_s", functions.acceptWaveform, missing);
    resolve(library, "vosk_recognizer_result", functions.result, missing);
    resolve(library, "vosk_recognizer_partial_result", functions.partialResult, missing);
    resolve(library, "vosk_recognizer_final_result", functions.finalResult, missing);
    if (!missing.isEmpty()) {
        ::dlclose(library);
        return std::unexpected(missing);
    }
    constexpr int errorsOnly = -1;
    functions.setLogLevel(errorsOnly);
    return std::shared_ptr<VoskLibrary>(new VoskLibrary(functions));
}

VoskModelPtr VoskLibrary::model(const QString& folder) {
    const std::lock_guard lock(mutex_);
    if (!model_ || modelFolder_ != folder) {
        model_.reset();
        if (auto* const loaded = functions_.modelNew(QFile::encodeName(folder).constData()))
            model_ = VoskModelPtr(loaded, functions_.modelFree);
        modelFolder_ = folder;
    }
    return model_;
}

}  // namespace tavrelon::desktop
