// `lectorbell voices [--json]`: the installed voices, best first, as the voices page ranks them.

#include "cli/SystemVoice.hpp"
#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "platform/Platform.hpp"
#include "speech/VoiceCatalog.hpp"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace lectorbell::cli {

namespace {

int runVoices(platform::Platform& platform, bool json) {
    std::unique_ptr<platform::PlatformSynthesizer> systemVoice =
        openSystemVoice(platform, std::cerr);
    if (!systemVoice) {
        return exitVoiceUnavailable;
    }
    platform::PlatformSynthesizer& synth = *systemVoice;
    speech::VoiceCatalog catalog{platform.preferredLanguages()};
    for (const platform::PlatformVoice& voice : catalog.ranked(synth.voices())) {
        const std::string accent = speech::VoiceCatalog::accent(voice.language);
        const bool isDefault = voice.id == synth.defaultVoiceId();
        if (json) {
            std::cout << jsonLine({{"id", voice.id},
                                   {"name", voice.name},
                                   {"language", voice.language},
                                   {"accent", accent},
                                   {"quality", voice.quality},
                                   {"default", isDefault}})
                      << '\n';
        } else {
            std::cout << voice.id << '\t' << voice.name << '\t' << voice.language << '\t' << accent
                      << '\t' << voice.quality << (isDefault ? "\tdefault" : "") << '\n';
        }
    }
    return 0;
}

} // namespace

void addVoicesVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto json = std::make_shared<bool>(false);
    CLI::App* verb = app.add_subcommand(
        "voices", "List the installed voices, most natural first (id, name, language, accent, "
                  "quality)");
    verb->add_flag("--json", *json, "One JSON object per line");
    verb->callback(
        [json, &outcome, &platform] { outcome.exitStatus = runVoices(platform, *json); });
}

} // namespace lectorbell::cli
