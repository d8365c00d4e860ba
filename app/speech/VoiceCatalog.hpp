#pragma once

#include "platform/PlatformSynthesizer.hpp"

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::speech {

// How a voice ranks; smaller is better, compared member by member.
struct VoiceScore {
    // Quality rank x 2, plus 1 for a novelty voice.
    int qualityAndNovelty = 0;
    // 0 for the user's first preferred language, else 1.
    int languageFlag = 0;
    std::string name;

    // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy misreads the defaulted comparison.
    friend auto operator<=>(const VoiceScore&, const VoiceScore&) = default;
    friend bool operator==(const VoiceScore&, const VoiceScore&) = default;
};

// Ranks the installed voices so that the most natural one can be proposed, and labels accents.
class VoiceCatalog {
public:
    using Voice = platform::PlatformVoice;

    // The user's preferred languages (BCP-47), most preferred first; "en-US" when none.
    explicit VoiceCatalog(std::vector<std::string> preferredLanguages);

    VoiceScore score(const Voice& voice) const;
    // All voices in score order (ties on the whole score keep their given order).
    std::vector<Voice> ranked(const std::vector<Voice>& voices) const;
    std::optional<Voice> bestNatural(const std::vector<Voice>& voices) const;
    // Up to `limit` voices in score order; the current voice is always among them (in place of
    // the last one when it would not be).
    std::vector<Voice> featured(const std::vector<Voice>& voices, std::size_t limit,
                                const std::optional<std::string>& currentId) const;

    // Whether a voice better than the plain default quality ("Premium", "Enhanced") is installed.
    static bool hasNatural(const std::vector<Voice>& voices);
    // "American", "British", ...; other tags give the display name of their region ("Canada"
    // for fr-CA), or the region code itself when it has no name; no region gives "".
    static std::string accent(std::string_view language);
    static int qualityRank(std::string_view quality);
    static bool isNovelty(const Voice& voice);

    const std::string& firstPreferredLanguage() const { return firstLanguage_; }

private:
    std::string firstLanguage_;
};

} // namespace lectorbell::speech
