#include "speech/VoiceCatalog.hpp"

#include <QLocale>
#include <QString>
#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace lectorbell::speech {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 9> accentLabels{{
    {"en-US", "American"},
    {"en-GB", "British"},
    {"en-AU", "Australian"},
    {"en-IE", "Irish"},
    {"en-IN", "Indian"},
    {"en-ZA", "South African"},
    {"en-CA", "Canadian"},
    {"en-NZ", "New Zealand"},
    {"en-SC", "Scottish"},
}};

constexpr std::array<std::string_view, 5> noveltyNames{"Fred", "Junior", "Kathy", "Ralph",
                                                       "Albert"};

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

} // namespace

VoiceCatalog::VoiceCatalog(std::vector<std::string> preferredLanguages)
    : firstLanguage_{preferredLanguages.empty() ? std::string{"en-US"}
                                                : std::move(preferredLanguages.front())} {}

int VoiceCatalog::qualityRank(std::string_view quality) {
    if (quality == "Premium") {
        return 0;
    }
    if (quality == "Enhanced") {
        return 1;
    }
    return quality == "Default" ? 2 : 3;
}

bool VoiceCatalog::isNovelty(const Voice& voice) {
    return std::find(noveltyNames.begin(), noveltyNames.end(), voice.name) != noveltyNames.end() ||
           voice.id.find(".eloquence.") != std::string::npos;
}

VoiceScore VoiceCatalog::score(const Voice& voice) const {
    return {qualityRank(voice.quality) * 2 + (isNovelty(voice) ? 1 : 0),
            equalsIgnoringCase(voice.language, firstLanguage_) ? 0 : 1, voice.name};
}

std::vector<VoiceCatalog::Voice> VoiceCatalog::ranked(const std::vector<Voice>& voices) const {
    std::vector<std::pair<VoiceScore, Voice>> scored;
    scored.reserve(voices.size());
    for (const Voice& voice : voices) {
        scored.emplace_back(score(voice), voice);
    }
    std::stable_sort(scored.begin(), scored.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<Voice> result;
    result.reserve(scored.size());
    for (auto& entry : scored) {
        result.push_back(std::move(entry.second));
    }
    return result;
}

std::optional<VoiceCatalog::Voice>
VoiceCatalog::bestNatural(const std::vector<Voice>& voices) const {
    std::vector<Voice> order = ranked(voices);
    if (order.empty()) {
        return std::nullopt;
    }
    return order.front();
}

std::vector<VoiceCatalog::Voice>
VoiceCatalog::featured(const std::vector<Voice>& voices, std::size_t limit,
                       const std::optional<std::string>& currentId) const {
    std::vector<Voice> order = ranked(voices);
    auto isCurrent = [&](const Voice& v) { return currentId && v.id == *currentId; };
    auto current = std::find_if(order.begin(), order.end(), isCurrent);
    if (limit > 0 && current != order.end() &&
        static_cast<std::size_t>(current - order.begin()) >= limit) {
        // Keep score order: the current voice takes the last place shown.
        std::rotate(order.begin() + static_cast<std::ptrdiff_t>(limit - 1), current, current + 1);
    }
    order.resize(std::min(limit, order.size()));
    return order;
}

bool VoiceCatalog::hasNatural(const std::vector<Voice>& voices) {
    return std::any_of(voices.begin(), voices.end(),
                       [](const Voice& v) { return qualityRank(v.quality) < 2; });
}

std::string VoiceCatalog::accent(std::string_view language) {
    for (const auto& [tag, label] : accentLabels) {
        if (equalsIgnoringCase(tag, language)) {
            return std::string{label};
        }
    }
    std::size_t dash = language.find('-');
    if (dash == std::string_view::npos) {
        return {};
    }
    std::string_view rest = language.substr(dash + 1);
    std::string region{rest.substr(0, rest.find('-'))};
    // QLocale knows regions by their two-letter codes (and the language part decides nothing
    // here); a script ("Latn") or a numeric area ("419") keeps its code.
    QLocale::Territory territory = QLocale::codeToTerritory(QString::fromStdString(region));
    if (territory == QLocale::AnyTerritory) {
        return region;
    }
    return QLocale::territoryToString(territory).toStdString();
}

} // namespace lectorbell::speech
