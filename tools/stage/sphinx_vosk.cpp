// A library with the functions of Vosk that really understands speech: English sentences of a fixed grammar, by
// PocketSphinx. The model is a folder with the grammar in the file "grammar.jsgf".
#include <pocketsphinx.h>
#include <sphinxbase/err.h>

#include <string>

namespace {

struct Model {
    cmd_ln_t* configuration;
    ps_decoder_t* decoder;
};

struct Recognizer {
    ps_decoder_t* decoder;
    std::string answer;

    const char* say(const char* key) {
        const char* const heard = ps_get_hyp(decoder, nullptr);
        answer = "{\"" + std::string(key) + "\" : \"" + (heard ? heard : "") + "\"}";
        return answer.c_str();
    }
};

}  // namespace

extern "C" {

void vosk_set_log_level(int) {
    err_set_logfp(nullptr);
}

Model* vosk_model_new(const char* folder) {
    const auto grammar = std::string(folder) + "/grammar.jsgf";
    cmd_ln_t* const configuration =
        cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", SPHINX_MODELS "/en-us/en-us", "-dict",
                    SPHINX_MODELS "/en-us/cmudict-en-us.dict", "-jsgf", grammar.c_str(), nullptr);
    ps_decoder_t* const decoder = configuration ? ps_init(configuration) : nullptr;
    return decoder ? new Model{configuration, decoder} : nullptr;
}
void vosk_model_free(Model* model) {
    ps_free(model->decoder);
    cmd_ln_free_r(model->configuration);
    delete model;
}

Recognizer* vosk_recognizer_new(Model* model, float) {
    return ps_start_utt(model->decoder) == 0 ? new Recognizer{model->decoder, {}} : nullptr;
}
void vosk_recognizer_free(Recognizer* recognizer) {
    ps_end_utt(recognizer->decoder);
    delete recognizer;
}

// A pause ends no utterance: the grammar is of whole sentences.
int vosk_recognizer_accept_waveform_s(Recognizer* recognizer, const short* samples, int count) {
    return ps_process_raw(recognizer->decoder, samples, static_cast<size_t>(count), FALSE, FALSE) < 0 ? -1 : 0;
}

const char* vosk_recognizer_result(Recognizer* recognizer) {
    return recognizer->say("text");
}
const char* vosk_recognizer_partial_result(Recognizer* recognizer) {
    return recognizer->say("partial");
}
const char* vosk_recognizer_final_result(Recognizer* recognizer) {
    ps_end_utt(recognizer->decoder);
    recognizer->say("text");
    ps_start_utt(recognizer->decoder);
    return recognizer->answer.c_str();
}
}
