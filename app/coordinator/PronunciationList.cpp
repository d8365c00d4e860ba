#include "coordinator/PronunciationList.hpp"

#include "lectorbell/Utf8.hpp"

#include <QHash>
#include <QString>
#include <algorithm>
#include <nlohmann/json.hpp>

namespace lectorbell::coordinator::PronunciationList {

namespace {

// Spaces and tabs at both ends go, as the pronunciation layer trims them.
std::u16string_view trimmed(std::u16string_view text) {
    auto blank = [](char16_t c) { return c == u' ' || c == u'\t'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// The word as compared: trimmed and case-folded.
QString wordKey(std::u16string_view word) {
    return QStringView{trimmed(word)}.toString().toCaseFolded();
}

bool sameWord(std::u16string_view a, std::u16string_view b) {
    return wordKey(a) == wordKey(b);
}

} // namespace

std::optional<std::string> whyRefused(const PronunciationRule& rule) {
    std::u16string_view word = trimmed(rule.word);
    std::u16string_view sayAs = trimmed(rule.sayAs);
    if (word.empty()) {
        return "the word is empty";
    }
    if (sayAs.empty()) {
        return "what to say is empty";
    }
    if (word.size() > longestWord) {
        return "the word is longer than " + std::to_string(longestWord) + " characters";
    }
    if (sayAs.size() > longestSayAs) {
        return "what to say is longer than " + std::to_string(longestSayAs) + " characters";
    }
    // The same matching as when reading: would the rule find its word in its own replacement?
    std::u16string spoken{sayAs};
    if (Pronunciations::apply(spoken, {rule}) != spoken) {
        return "what to say contains the word again";
    }
    return std::nullopt;
}

Placement put(std::vector<PronunciationRule>& list, PronunciationRule rule) {
    auto same = std::find_if(list.begin(), list.end(), [&rule](const PronunciationRule& old) {
        return sameWord(old.word, rule.word);
    });
    if (same != list.end()) {
        *same = std::move(rule);
        return Placement::replaced;
    }
    list.push_back(std::move(rule));
    return Placement::added;
}

std::size_t remove(std::vector<PronunciationRule>& list, std::u16string_view word) {
    return std::erase_if(
        list, [word](const PronunciationRule& rule) { return sameWord(rule.word, word); });
}

std::optional<ImportReport> import(std::vector<PronunciationRule>& list, std::string_view json,
                                   std::string* whyNot) {
    nlohmann::json parsed = nlohmann::json::parse(json, nullptr, false);
    if (parsed.is_discarded() || !parsed.is_array()) {
        if (whyNot) {
            *whyNot = parsed.is_discarded() ? "not valid JSON" : "not a JSON array";
        }
        return std::nullopt;
    }
    ImportReport report;
    // Where each word of the list is, so that a large import stays quick.
    QHash<QString, std::size_t> positions;
    for (std::size_t i = 0; i < list.size(); ++i) {
        positions.insert(wordKey(list[i].word), i);
    }
    std::size_t index = 0;
    for (const nlohmann::json& element : parsed) {
        ++index;
        auto refuse = [&](std::string reason) {
            report.refused.push_back({index, std::move(reason)});
        };
        const nlohmann::json* word = nullptr;
        const nlohmann::json* sayAs = nullptr;
        if (element.is_object()) {
            auto w = element.find("word");
            auto s = element.find("sayAs");
            word = w != element.end() && w->is_string() ? &*w : nullptr;
            sayAs = s != element.end() && s->is_string() ? &*s : nullptr;
        }
        if (!word || !sayAs) {
            refuse("not an object with the strings \"word\" and \"sayAs\"");
            continue;
        }
        PronunciationRule rule{Uuid::random(), fromUtf8(word->get_ref<const std::string&>()),
                               fromUtf8(sayAs->get_ref<const std::string&>())};
        auto id = element.find("id");
        if (id != element.end() && id->is_string()) {
            rule.id = Uuid::parse(id->get_ref<const std::string&>()).value_or(rule.id);
        }
        QString key = wordKey(rule.word);
        auto known = positions.constFind(key);
        if (known == positions.cend() && list.size() >= mostRules) {
            if (report.refusedAsFull++ == 0) {
                report.firstRefusedAsFull = index;
            }
            continue;
        }
        if (std::optional<std::string> why = whyRefused(rule)) {
            refuse(std::move(*why));
            continue;
        }
        if (known != positions.cend()) {
            list[*known] = std::move(rule);
            ++report.replaced;
        } else {
            positions.insert(key, list.size());
            list.push_back(std::move(rule));
            ++report.added;
        }
    }
    return report;
}

} // namespace lectorbell::coordinator::PronunciationList
