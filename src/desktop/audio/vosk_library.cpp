#include "desktop/audio/vosk_library.h"

#include <dlfcn.h>
#include <link.h>

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

template <typename Record>
bool readRecord(QFile& file, qint64 place, Record& record) {
    return file.seek(place) && file.read(reinterpret_cast<char*>(&record), sizeof record) == sizeof record;
}

/// Whether a library ends before its content does, as after a download that broke off. The loader does not look, and
/// the program would die in it.
bool isCutOff(const QString& path) {
    QFile file(path);
    ElfW(Ehdr) header;
    if (!file.open(QIODevice::ReadOnly) || !readRecord(file, 0, header) ||
        !QByteArrayView(header.e_ident, SELFMAG).startsWith(ELFMAG))
        return false;  // which the loader tells in better words
    for (int i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment;
        if (!readRecord(file, static_cast<qint64>(header.e_phoff) + i * header.e_phentsize, segment))
            return true;
        const auto size = static_cast<ElfW(Xword)>(file.size());
        if (segment.p_type == PT_LOAD && (segment.p_offset > size || segment.p_filesz > size - segment.p_offset))
            return true;
    }
    return false;
}

QString loadingError() {
    const char* const error = ::dlerror();
    return QString::fromUtf8(error ? error : "it cannot be loaded");
}

}  // namespace

std::expected<std::shared_ptr<VoskLibrary>, QString> VoskLibrary::load(const QString& file) {
    if (isCutOff(file))
        return std::unexpected(QStringLiteral("%1: the file is not complete").arg(file));
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

VoskModelPtr VoskLibrary::readModel(const QString& folder) const {
    if (auto* const model = functions_.modelNew(QFile::encodeName(folder).constData()))
        return {model, functions_.modelFree};
    return nullptr;
}

}  // namespace tavrelon::desktop
