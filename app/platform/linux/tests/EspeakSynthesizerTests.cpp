#include "platform/linux/espeak/EspeakRate.hpp"
#include "platform/linux/espeak/EspeakSynthesizer.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace lectorbell::platform::espeak {
namespace {

std::u16string textOf(std::u16string_view text, UTF16Range range) {
    return std::u16string{text.substr(static_cast<std::size_t>(range.location),
                                      static_cast<std::size_t>(range.length))};
}

class EspeakSynthesizerTest : public testing::Test {
protected:
    EspeakSynthesizer synth{{"en-US"}};
};

TEST_F(EspeakSynthesizerTest, RendersEveryWordOnItsOwnRangeWithRisingFrames) {
    struct Case {
        std::u16string text;
        std::vector<std::u16string> words;
    };
    const std::vector<Case> cases{
        {u"Read this sentence aloud.", {u"Read", u"this", u"sentence", u"aloud"}},
        {u"Caf\u00e9 na\u00efve r\u00e9sum\u00e9 works.",
         {u"Caf\u00e9", u"na\u00efve", u"r\u00e9sum\u00e9", u"works"}},
        // Emoji are two UTF-16 units each: the words after them must not shift.
        {u"Smile \U0001F600 then \U0001F44D\U0001F3FD finish now.",
         {u"Smile", u"then", u"finish", u"now"}},
        {u"\u201cQuoted\u201d words \u2014 and dashes.", {u"Quoted", u"words", u"and", u"dashes"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case with " << c.words.size() << " words");
        SynthesizedSpeech speech = synth.render(c.text, synth.defaultVoiceId(), 0.5F).value();
        ASSERT_GT(speech.samples.size(), 1000U);
        std::vector<std::u16string> heard;
        std::int64_t lastFrame = -1;
        for (const SpokenWord& word : speech.words) {
            EXPECT_GT(word.frame, lastFrame);
            EXPECT_LT(word.frame, static_cast<std::int64_t>(speech.samples.size()));
            lastFrame = word.frame;
            heard.push_back(textOf(c.text, word.range));
        }
        // Every expected word is reported, in order (emoji may add words of their own).
        auto it = heard.begin();
        for (const std::u16string& expected : c.words) {
            it = std::find(it, heard.end(), expected);
            EXPECT_NE(it, heard.end());
        }
    }
}

TEST_F(EspeakSynthesizerTest, RendersMonoSixteenBitAtTheVoicesRate) {
    EXPECT_EQ(synth.format(), (PcmFormat{22050, 1}));
    EXPECT_TRUE(synth.isAvailable());
}

TEST_F(EspeakSynthesizerTest, FasterRatesGiveShorterSpeech) {
    std::u16string text = u"The quick brown fox jumps over the lazy dog.";
    std::size_t previous = SIZE_MAX;
    for (float rate : {0.0F, 0.3F, 0.5F, 0.72F, 1.0F}) {
        std::size_t length = synth.render(text, synth.defaultVoiceId(), rate)->samples.size();
        EXPECT_LT(length, previous) << "rate " << rate;
        previous = length;
    }
}

TEST_F(EspeakSynthesizerTest, UnknownVoiceSpeaksWithTheDefaultVoice) {
    std::u16string text = u"Hello there.";
    SynthesizedSpeech unknown = synth.render(text, "no/such-voice", 0.5F).value();
    SynthesizedSpeech standard = synth.render(text, synth.defaultVoiceId(), 0.5F).value();
    // espeak-ng varies its output by a few samples from call to call.
    EXPECT_NEAR(static_cast<double>(unknown.samples.size()),
                static_cast<double>(standard.samples.size()), 50.0);
    EXPECT_EQ(unknown.words, standard.words);
}

TEST_F(EspeakSynthesizerTest, TextWithNothingToSayRendersWithoutWordsAndIsNoFailure) {
    for (std::u16string_view text : {u"", u"...", u" ; "}) {
        std::optional<SynthesizedSpeech> speech = synth.render(text, synth.defaultVoiceId(), 0.5F);
        ASSERT_TRUE(speech.has_value());
        EXPECT_TRUE(speech->words.empty());
    }
}

TEST_F(EspeakSynthesizerTest, ListsVoicesWithTagsAndPicksThePreferredLanguage) {
    std::vector<PlatformVoice> voices = synth.voices();
    ASSERT_FALSE(voices.empty());
    auto american = std::find_if(voices.begin(), voices.end(),
                                 [](const PlatformVoice& v) { return v.language == "en-US"; });
    ASSERT_NE(american, voices.end());
    EXPECT_EQ(synth.defaultVoiceId(), american->id);
    EXPECT_EQ(american->quality, "Default");
    EXPECT_TRUE(std::none_of(voices.begin(), voices.end(),
                             [](const PlatformVoice& v) { return v.id.starts_with("mb/"); }));

    EspeakSynthesizer french{{"fr-CA", "en-US"}};
    auto voice = std::find_if(voices.begin(), voices.end(), [&](const PlatformVoice& v) {
        return v.id == french.defaultVoiceId();
    });
    ASSERT_NE(voice, voices.end());
    EXPECT_TRUE(voice->language.starts_with("fr")) << voice->language;
}

TEST(EspeakLanguage, BecomesBcp47) {
    EXPECT_EQ(bcp47FromEspeakLanguage("en-us"), "en-US");
    EXPECT_EQ(bcp47FromEspeakLanguage("en-gb-x-rp"), "en-GB-x-rp");
    EXPECT_EQ(bcp47FromEspeakLanguage("cmn-latn-pinyin"), "cmn-Latn-pinyin");
    EXPECT_EQ(bcp47FromEspeakLanguage("es-419"), "es-419");
    EXPECT_EQ(bcp47FromEspeakLanguage("fr"), "fr");
}

TEST(EspeakRate, IsMonotoneWithNormalAtHalfAndClampsOutside) {
    EXPECT_EQ(espeakWordsPerMinute(0.5F), 175);
    EXPECT_EQ(espeakWordsPerMinute(0.0F), 80);
    EXPECT_EQ(espeakWordsPerMinute(-3.0F), 80);
    EXPECT_EQ(espeakWordsPerMinute(7.0F), espeakWordsPerMinute(1.0F));
    EXPECT_EQ(espeakWordsPerMinute(std::numeric_limits<float>::quiet_NaN()), 175);
    int previous = 0;
    for (int step = 0; step <= 100; ++step) {
        int wpm = espeakWordsPerMinute(static_cast<float>(step) / 100.0F);
        EXPECT_GE(wpm, previous) << "rate " << step / 100.0;
        previous = wpm;
    }
    // The fastest preset is 1.75x normal, as its speed multiplier says.
    EXPECT_NEAR(espeakWordsPerMinute(0.72F) / 175.0, 1.75, 0.03);
}

} // namespace
} // namespace lectorbell::platform::espeak
