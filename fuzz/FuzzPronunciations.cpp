// Input: text, then word and sayAs pairs, separated by U+001F.

#include "FuzzInput.hpp"
#include "lectorbell/Pronunciations.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lectorbell;
    std::vector<std::u16string> fields = fuzz::split(fuzz::unitsOf(data, size), u'\x1F');
    std::vector<PronunciationRule> rules;
    for (std::size_t i = 1; i + 1 < fields.size(); i += 2) {
        rules.push_back(PronunciationRule{Uuid{}, fields[i], fields[i + 1]});
    }
    Pronunciations::apply(fields[0], rules);
    return 0;
}
