#pragma once

#include <string>
#include <string_view>

namespace lectorbell::NumberSpeech {

// Signs, ranges and magnitude suffixes in words: "-5" reads "minus 5", "3–7" "3 to 7", "±2"
// "plus or minus 2", "10K" "10 thousand", "5M" "5 million", "3 bn" "3 billion", and an
// accounting "(1,200)" "minus 1,200" (so a list mark "(1)" reads "minus 1" too). A text with no
// number character is returned as it is without running any pattern.
std::u16string normalize(std::u16string_view text);

} // namespace lectorbell::NumberSpeech
