// Input: the first unit sets the minimum word count; then the run's words separated by spaces,
// U+001F, and the text to search.

#include "FuzzInput.hpp"
#include "lectorbell/TextAlignment.hpp"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lectorbell;
    std::u16string input = fuzz::unitsOf(data, size);
    if (input.empty()) {
        return 0;
    }
    int minimumWords = static_cast<int>(input[0] % 6) - 1;
    std::u16string_view rest = std::u16string_view{input}.substr(1);
    std::size_t separator = rest.find(u'\x1F');
    std::u16string_view text =
        separator == std::u16string_view::npos ? rest : rest.substr(separator + 1);
    std::vector<std::u16string> words = fuzz::split(rest.substr(0, separator), u' ');
    auto found = TextAlignment::offset(words, text, minimumWords);
    if (found && (*found < 0 || static_cast<std::size_t>(*found) >= text.size())) {
        std::abort();
    }
    return 0;
}
