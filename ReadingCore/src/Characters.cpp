#include "Characters.hpp"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace lectorbell::detail {

std::optional<char32_t> singleScalar(std::u16string_view character) {
    if (character.empty()) {
        return std::nullopt;
    }
    std::size_t i = 0;
    UChar32 c = 0;
    U16_NEXT(character.data(), i, character.size(), c);
    if (i == character.size()) {
        return static_cast<char32_t>(c);
    }
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    icu::UnicodeString composed = nfc->normalize(
        icu::UnicodeString(false, character.data(), static_cast<int32_t>(character.size())),
        status);
    if (U_FAILURE(status) || composed.countChar32() != 1) {
        return std::nullopt;
    }
    return static_cast<char32_t>(composed.char32At(0));
}

} // namespace lectorbell::detail
