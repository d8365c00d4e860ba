#include "lectorbell/Utf8.hpp"

#include <climits>
#include <unicode/ustring.h>

namespace lectorbell {

Utf8Decoded decodeUtf8(std::string_view bytes) {
    Utf8Decoded result;
    if (bytes.empty()) {
        return result;
    }
    if (bytes.size() > static_cast<std::size_t>(INT32_MAX)) {
        // ICU takes 32-bit lengths; convert in pieces cut at character starts.
        std::size_t cut = static_cast<std::size_t>(INT32_MAX) - 4;
        while (cut > 0 && (static_cast<unsigned char>(bytes[cut]) & 0xC0) == 0x80) {
            --cut;
        }
        Utf8Decoded head = decodeUtf8(bytes.substr(0, cut));
        Utf8Decoded tail = decodeUtf8(bytes.substr(cut));
        head.text += tail.text;
        head.replacements += tail.replacements;
        return head;
    }
    // UTF-16 never needs more units than UTF-8 has bytes.
    result.text.resize(bytes.size());
    int32_t length = 0;
    int32_t substitutions = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(result.text.data(), static_cast<int32_t>(result.text.size()), &length,
                         bytes.data(), static_cast<int32_t>(bytes.size()), 0xFFFD, &substitutions,
                         &status);
    if (U_FAILURE(status)) {
        result.text.clear();
        result.replacements = bytes.size();
        return result;
    }
    result.text.resize(static_cast<std::size_t>(length));
    result.replacements = static_cast<std::size_t>(substitutions);
    return result;
}

std::u16string fromUtf8(std::string_view bytes) {
    return decodeUtf8(bytes).text;
}

std::string toUtf8(std::u16string_view text) {
    std::string out;
    if (text.empty()) {
        return out;
    }
    if (text.size() > static_cast<std::size_t>(INT32_MAX) / 3) {
        // ICU takes 32-bit lengths; convert in pieces that do not split a surrogate pair.
        std::size_t cut = static_cast<std::size_t>(INT32_MAX) / 3 - 1;
        if (text[cut] >= 0xDC00 && text[cut] <= 0xDFFF) {
            --cut;
        }
        return toUtf8(text.substr(0, cut)) + toUtf8(text.substr(cut));
    }
    out.resize(text.size() * 3);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, text.data(),
                       static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &status);
    if (U_FAILURE(status)) {
        return {};
    }
    out.resize(static_cast<std::size_t>(length));
    return out;
}

} // namespace lectorbell
