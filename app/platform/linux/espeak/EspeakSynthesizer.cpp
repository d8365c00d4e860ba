#include "platform/linux/espeak/EspeakSynthesizer.hpp"

#include "lectorbell/Utf8.hpp"
#include "platform/linux/LinuxLog.hpp"
#include "platform/linux/espeak/EspeakRate.hpp"
#include "platform/linux/espeak/EspeakWords.hpp"

#include <QLoggingCategory>
#include <algorithm>
#include <cctype>
#include <espeak-ng/speak_lib.h>
#include <mutex>

namespace lectorbell::platform::espeak {

namespace {

constexpr const char* qualityDefault = "Default";
// Buffer length espeak-ng renders at a time; rendering is synchronous, so it only sets how often
// the callback runs.
constexpr int renderBufferMs = 50;

// What one synchronous espeak_Synth call collects.
struct RenderCollector {
    PcmSamples samples;
    std::vector<EspeakWordEvent> events;
    int sampleRate = 0;
};

// The collector of the espeak_Synth call in progress (set under EspeakLibrary's lock).
RenderCollector* activeCollector = nullptr;

int collect(short* wav, int count, espeak_EVENT* events) {
    RenderCollector* collector = activeCollector;
    if (collector == nullptr) {
        return 0;
    }
    for (espeak_EVENT* event = events; event->type != espeakEVENT_LIST_TERMINATED; ++event) {
        if (event->type == espeakEVENT_WORD) {
            // audio_position is in milliseconds from the start of this text.
            std::int64_t frame =
                static_cast<std::int64_t>(event->audio_position) * collector->sampleRate / 1000;
            collector->events.push_back({event->text_position, frame});
        }
    }
    if (wav != nullptr && count > 0) {
        collector->samples.insert(collector->samples.end(), wav, wav + count);
    }
    return 0;
}

// espeak-ng's process-wide state: initialised on first use, released at exit.
class EspeakLibrary {
public:
    static EspeakLibrary& shared() {
        static EspeakLibrary library;
        return library;
    }
    EspeakLibrary(const EspeakLibrary&) = delete;
    EspeakLibrary& operator=(const EspeakLibrary&) = delete;

    std::mutex mutex;
    int sampleRate = 0;
    std::string currentVoice;

private:
    EspeakLibrary() {
        sampleRate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, renderBufferMs, nullptr,
                                       espeakINITIALIZE_DONT_EXIT);
        if (sampleRate <= 0) {
            qCWarning(lcReading, "speech: espeak-ng failed to initialise (%d)", sampleRate);
            sampleRate = 0;
            return;
        }
        espeak_SetSynthCallback(collect);
    }
    ~EspeakLibrary() {
        if (sampleRate > 0) {
            espeak_Terminate();
        }
    }
};

std::string lower(std::string_view s) {
    std::string out{s};
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

std::vector<PlatformVoice> listVoices() {
    std::vector<PlatformVoice> voices;
    const espeak_VOICE** list = espeak_ListVoices(nullptr);
    for (std::size_t i = 0; list != nullptr && list[i] != nullptr; ++i) {
        const espeak_VOICE* voice = list[i];
        std::string id = voice->identifier != nullptr ? voice->identifier : "";
        // MBROLA voices need separate diphone databases that are rarely installed.
        if (id.empty() || id.starts_with("mb/")) {
            continue;
        }
        // `languages` is a list of (priority byte, name) pairs; the first is the main one.
        std::string language = voice->languages != nullptr && voice->languages[0] != '\0'
                                   ? bcp47FromEspeakLanguage(voice->languages + 1)
                                   : std::string{};
        voices.push_back({id, voice->name != nullptr ? voice->name : id, language, qualityDefault});
    }
    return voices;
}

std::string chooseDefault(const std::vector<PlatformVoice>& voices,
                          const std::vector<std::string>& preferredLanguages) {
    auto find = [&](auto matches) {
        auto it = std::find_if(voices.begin(), voices.end(), matches);
        return it != voices.end() ? it->id : std::string{};
    };
    for (const std::string& preferred : preferredLanguages) {
        std::string wanted = lower(preferred);
        std::string id = find([&](const PlatformVoice& v) { return lower(v.language) == wanted; });
        if (id.empty()) {
            std::string primary = wanted.substr(0, wanted.find('-'));
            id = find([&](const PlatformVoice& v) {
                return lower(v.language.substr(0, v.language.find('-'))) == primary;
            });
        }
        if (!id.empty()) {
            return id;
        }
    }
    std::string id = find([](const PlatformVoice& v) { return v.language == "en-US"; });
    return !id.empty() || voices.empty() ? id : voices.front().id;
}

} // namespace

std::string bcp47FromEspeakLanguage(std::string_view language) {
    std::string tag;
    bool privateUse = false;
    std::size_t index = 0;
    std::size_t pos = 0;
    while (pos <= language.size()) {
        std::size_t dash = std::min(language.find('-', pos), language.size());
        std::string subtag = lower(language.substr(pos, dash - pos));
        bool alpha = std::all_of(subtag.begin(), subtag.end(),
                                 [](unsigned char c) { return std::isalpha(c) != 0; });
        if (index > 0 && !privateUse && alpha && subtag.size() == 2) {
            std::transform(subtag.begin(), subtag.end(), subtag.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        } else if (index > 0 && !privateUse && alpha && subtag.size() == 4) {
            subtag[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(subtag[0])));
        }
        privateUse = privateUse || subtag == "x";
        tag += (index > 0 ? "-" : "") + subtag;
        ++index;
        pos = dash + 1;
    }
    return tag;
}

EspeakSynthesizer::EspeakSynthesizer(const std::vector<std::string>& preferredLanguages) {
    EspeakLibrary& library = EspeakLibrary::shared();
    std::lock_guard lock{library.mutex};
    if (library.sampleRate > 0) {
        voices_ = listVoices();
    }
    defaultVoiceId_ = chooseDefault(voices_, preferredLanguages);
}

bool EspeakSynthesizer::isAvailable() const {
    return EspeakLibrary::shared().sampleRate > 0 && !voices_.empty();
}

std::vector<PlatformVoice> EspeakSynthesizer::voices() const {
    return voices_;
}

std::string EspeakSynthesizer::defaultVoiceId() const {
    return defaultVoiceId_;
}

PcmFormat EspeakSynthesizer::format() const {
    int rate = EspeakLibrary::shared().sampleRate;
    return {rate > 0 ? rate : 22050, 1};
}

std::optional<SynthesizedSpeech> EspeakSynthesizer::render(std::u16string_view text,
                                                           const std::string& voiceId, float rate) {
    SynthesizedSpeech speech;
    speech.format = format();
    EspeakLibrary& library = EspeakLibrary::shared();
    std::lock_guard lock{library.mutex};
    if (library.sampleRate <= 0) {
        return std::nullopt;
    }

    bool known = std::any_of(voices_.begin(), voices_.end(),
                             [&](const PlatformVoice& v) { return v.id == voiceId; });
    if (!known && !voiceId.empty() && voiceId != lastUnknownVoice_) {
        // Once per voice, not once per chunk.
        lastUnknownVoice_ = voiceId;
        qCInfo(lcReading, "speech: unknown voice, the default voice speaks");
    }
    const std::string& voice = known ? voiceId : defaultVoiceId_;
    if (voice != library.currentVoice) {
        espeak_ERROR status = espeak_SetVoiceByName(voice.c_str());
        if (status != EE_OK) {
            qCWarning(lcReading, "speech: espeak-ng could not load a voice (%d)", status);
            return std::nullopt;
        }
        library.currentVoice = voice;
    }
    espeak_SetParameter(espeakRATE, espeakWordsPerMinute(rate), 0);

    RenderCollector collector;
    collector.sampleRate = library.sampleRate;
    std::string utf8 = toUtf8(text);
    // espeakENDPAUSE keeps the voice's own pause after the last sentence, so that two chunks
    // queued back to back sound like one text.
    activeCollector = &collector;
    espeak_ERROR status = espeak_Synth(utf8.c_str(), utf8.size() + 1, 0, POS_CHARACTER, 0,
                                       espeakCHARS_UTF8 | espeakENDPAUSE, nullptr, nullptr);
    activeCollector = nullptr;
    if (status != EE_OK) {
        qCWarning(lcReading, "speech: espeak-ng failed to render %zu bytes (%d)", utf8.size(),
                  status);
        return std::nullopt;
    }
    speech.samples = std::move(collector.samples);
    speech.words = spokenWords(text, collector.events);
    return speech;
}

} // namespace lectorbell::platform::espeak
