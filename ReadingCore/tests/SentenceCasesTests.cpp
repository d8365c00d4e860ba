// Sentence boundaries on hard English cases, in the spirit of the well-known "golden rules" for
// sentence boundary detection, and the cases the segmentation rules fix (abbreviations that close
// a sentence or not, initials, addresses, digit and lower-case starts, citation marks, lists,
// ellipses). Every case must hold.
#include "lectorbell/TextSegmenter.hpp"
#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace lectorbell {
namespace {

struct SentenceCase {
    const char* text;
    std::vector<const char*> expected;
};

const std::vector<SentenceCase>& cases() {
    static const std::vector<SentenceCase> table{
        {"Hello World. My name is Jonas.", {"Hello World.", "My name is Jonas."}},
        {"What is your name? My name is Jonas.", {"What is your name?", "My name is Jonas."}},
        {"There it is! I found it.", {"There it is!", "I found it."}},
        {"My name is Jonas E. Smith.", {"My name is Jonas E. Smith."}},
        {"Please turn to p. 55.", {"Please turn to p. 55."}},
        {"Were Jane and co. at the party?", {"Were Jane and co. at the party?"}},
        {"They closed the deal with Pitt, Briggs & Co. at noon.",
         {"They closed the deal with Pitt, Briggs & Co. at noon."}},
        {"Let's ask Jane and co. They should know.",
         {"Let's ask Jane and co.", "They should know."}},
        {"I can see Mt. Fuji from here.", {"I can see Mt. Fuji from here."}},
        {"St. Michael's Church is on 5th st. near the light.",
         {"St. Michael's Church is on 5th st. near the light."}},
        {"That is JFK Jr.'s book.", {"That is JFK Jr.'s book."}},
        {"I visited the U.S.A. last year.", {"I visited the U.S.A. last year."}},
        {"I live in the E.U. How about you?", {"I live in the E.U.", "How about you?"}},
        {"I live in the U.S. How about you?", {"I live in the U.S.", "How about you?"}},
        {"I work for the U.S. Government in Virginia.",
         {"I work for the U.S. Government in Virginia."}},
        {"I have lived in the U.S. for 20 years.", {"I have lived in the U.S. for 20 years."}},
        {"At 5 a.m. Mr. Smith went to the bank. He left the bank at 6 P.M. Mr. Smith then went "
         "to the store.",
         {"At 5 a.m. Mr. Smith went to the bank.", "He left the bank at 6 P.M.",
          "Mr. Smith then went to the store."}},
        {"She has $100.00 in her bag.", {"She has $100.00 in her bag."}},
        {"She has $100.00. It is in her bag.", {"She has $100.00.", "It is in her bag."}},
        {"He teaches science (He previously worked for 5 years as an engineer.) at the local "
         "University.",
         {"He teaches science (He previously worked for 5 years as an engineer.) at the local "
          "University."}},
        {"Her email is Jane.Doe@example.com. I sent her an email.",
         {"Her email is Jane.Doe@example.com.", "I sent her an email."}},
        {"The site is: https://www.example.50.com/new-site/awesome_content.html. Please check it "
         "out.",
         {"The site is: https://www.example.50.com/new-site/awesome_content.html.",
          "Please check it out."}},
        {"She turned to him, 'This is great.' she said.",
         {"She turned to him, 'This is great.' she said."}},
        {"She turned to him, \"This is great.\" she said.",
         {"She turned to him, \"This is great.\" she said."}},
        {"She turned to him, \"This is great.\" She held the book out to show him.",
         {"She turned to him, \"This is great.\"", "She held the book out to show him."}},
        {"Hello!! Long time no see.", {"Hello!!", "Long time no see."}},
        {"Hello?? Who is there?", {"Hello??", "Who is there?"}},
        {"Hello!? Is that you?", {"Hello!?", "Is that you?"}},
        {"1.) The first item 2.) The second item", {"1.) The first item", "2.) The second item"}},
        {"a. The first item b. The second item c. The third list item",
         {"a. The first item", "b. The second item", "c. The third list item"}},
        {"You can find it at N\u00B0. 1026.253.553. That is where the treasure is.",
         {"You can find it at N\u00B0. 1026.253.553.", "That is where the treasure is."}},
        {"She works at Yahoo! in the accounting department.",
         {"She works at Yahoo! in the accounting department."}},
        {"We make a good team, you and I. Did you see Albert I. Jones yesterday?",
         {"We make a good team, you and I.", "Did you see Albert I. Jones yesterday?"}},
        {"Thoreau argues that by simplifying one\u2019s life, \u201Cthe laws of the universe will "
         "appear less complex. . . .\u201D",
         {"Thoreau argues that by simplifying one\u2019s life, \u201Cthe laws of the universe will "
          "appear less complex. . . .\u201D"}},
        {"\"Bohr [...] used the analogy of parallel stairways [...]\" (Smith 55).",
         {"\"Bohr [...] used the analogy of parallel stairways [...]\" (Smith 55)."}},
        {"If words are left off at the end of a sentence, indicate the end of the sentence with "
         "a period . . . . Next sentence.",
         {"If words are left off at the end of a sentence, indicate the end of the sentence with "
          "a period . . . .",
          "Next sentence."}},
        {"I never meant that.... She left the store.",
         {"I never meant that....", "She left the store."}},
        {"I wasn\u2019t really ... well, what I mean...see . . . what I'm saying, the thing is . "
         ". . I didn\u2019t mean it.",
         {"I wasn\u2019t really ... well, what I mean...see . . . what I'm saying, the thing is . "
          ". . I didn\u2019t mean it."}},
        {"One further habit which was somewhat weakened . . . was that of combining words into "
         "self-interpreting compounds. . . . The practice was not abandoned. . . .",
         {"One further habit which was somewhat weakened . . . was that of combining words into "
          "self-interpreting compounds. . . .",
          "The practice was not abandoned. . . ."}},
        {"Mix it, put it in the oven, and -- voila! -- you have cake.",
         {"Mix it, put it in the oven, and -- voila! -- you have cake."}},
        {"Some can be -- if I may say so? -- a bit questionable.",
         {"Some can be -- if I may say so? -- a bit questionable."}},
        {"What do you think? The tests are on the table.",
         {"What do you think?", "The tests are on the table."}},
        {"Dr. Watson and Mr. Holmes arrived.", {"Dr. Watson and Mr. Holmes arrived."}},
        {"Mr. Smith went home. He slept.", {"Mr. Smith went home.", "He slept."}},
        {"See fig. 3 for details.", {"See fig. 3 for details."}},
        {"J. K. Gezeire wrote it.", {"J. K. Gezeire wrote it."}},
        {"The U.S. economy grew. Ph.D. students study.",
         {"The U.S. economy grew.", "Ph.D. students study."}},
        {"Visit https://example.com/search?q=test! Then leave.",
         {"Visit https://example.com/search?q=test!", "Then leave."}},
        {"Open http://example.org/a!b now. Then close it.",
         {"Open http://example.org/a!b now.", "Then close it."}},
        {"Mail john.doe@example.com now. Or call.", {"Mail john.doe@example.com now.", "Or call."}},
        {"This is true.[1] Next sentence.", {"This is true.[1]", "Next sentence."}},
        {"This is true. [12] Next sentence.", {"This is true. [12]", "Next sentence."}},
        {"It was cited.[citation needed] Then it was not.",
         {"It was cited.[citation needed]", "Then it was not."}},
        {"Steps: 1. Open the lid. 2. Pour the water.",
         {"Steps: 1. Open the lid.", "2. Pour the water."}},
        {"Wait for it\u2026 And then it happened.", {"Wait for it\u2026", "And then it happened."}},
        {"It ends here\u2026 and goes on.", {"It ends here\u2026 and goes on."}},
        {"Is this the end\u2026", {"Is this the end\u2026"}},
        {"He said \"Stop.\" Then he left.", {"He said \"Stop.\"", "Then he left."}},
        {"\u201CWhere are you going?\u201D she asked.",
         {"\u201CWhere are you going?\u201D she asked."}},
        {"The temperature is 98.6 degrees. It's hot.",
         {"The temperature is 98.6 degrees.", "It's hot."}},
        {"The results (see Table 2.) are clear.", {"The results (see Table 2.) are clear."}},
        {"I was born in 1990. My brother was born in 1992.",
         {"I was born in 1990.", "My brother was born in 1992."}},
        {"The answer is 42. It was obvious.", {"The answer is 42.", "It was obvious."}},
        {"Call me at 5 p.m. tomorrow.", {"Call me at 5 p.m. tomorrow."}},
        // Abbreviations that can close a sentence do so before a word that starts one.
        {"She works at Acme Co. The office is big.",
         {"She works at Acme Co.", "The office is big."}},
        {"She works at Acme Co. Ltd in town.", {"She works at Acme Co. Ltd in town."}},
        {"We sell apples, pears, etc. They are fresh.",
         {"We sell apples, pears, etc.", "They are fresh."}},
        {"Dr. J. Smith arrived at 5 p.m. He left.", {"Dr. J. Smith arrived at 5 p.m.", "He left."}},
        {"Smith et al. This study failed.", {"Smith et al.", "This study failed."}},
        {"The U.S. Army marched.", {"The U.S. Army marched."}},
        {"In the U.S. I learned to drive.", {"In the U.S. I learned to drive."}},
        {"Bands, e.g. The Beatles, played.", {"Bands, e.g. The Beatles, played."}},
        {"Ask Dr. Who and St. Thomas.", {"Ask Dr. Who and St. Thomas."}},
        {"Prices rose in the U.S. Do you see why?", {"Prices rose in the U.S.", "Do you see why?"}},
        // "I." is the pronoun after a lower-case word and before a sentence start.
        {"He is taller than I. Then we left.", {"He is taller than I.", "Then we left."}},
        {"John F. Kennedy spoke.", {"John F. Kennedy spoke."}},
        {"It was written by I. Newton in 1687.", {"It was written by I. Newton in 1687."}},
        {"We need vitamin C. The body needs it.", {"We need vitamin C.", "The body needs it."}},
        // Sentences that start with a digit or a word such as "iPhones".
        {"It ended. 42 people came.", {"It ended.", "42 people came."}},
        {"It ended. iPhones were sold.", {"It ended.", "iPhones were sold."}},
        {"Wow! eBay sold it.", {"Wow!", "eBay sold it."}},
        {"He said \"Go.\" 3 men left.", {"He said \"Go.\"", "3 men left."}},
        {"Call ext. 4411 or Bldg. 7 now.", {"Call ext. 4411 or Bldg. 7 now."}},
        {"I bought a PDF. 3 pages were blank.", {"I bought a PDF.", "3 pages were blank."}},
        {"See Sec. 4 and Art. 12 below.", {"See Sec. 4 and Art. 12 below."}},
        {"It was in 1990. 42 came.", {"It was in 1990.", "42 came."}},
        {"I mean... 3 of them.", {"I mean... 3 of them."}},
        // Runs of citation marks stay with the sentence they close.
        {"as shown.[1][2] Next sentence.", {"as shown.[1][2]", "Next sentence."}},
        {"as shown. [1][2] Next sentence.", {"as shown. [1][2]", "Next sentence."}},
        {"True.[3][citation needed] Then not.", {"True.[3][citation needed]", "Then not."}},
        {"It ended. [1] [x] Then not.", {"It ended. [1] [x]", "Then not."}},
        // List items at the start of a line are sentences of their own, marker included.
        {"Intro line\n1. Buy milk\n2. Buy eggs", {"Intro line", "1. Buy milk", "2. Buy eggs"}},
        {"some text\na. first item\nb) second item",
         {"some text", "a. first item", "b) second item"}},
        {"It ended.\na. First item", {"It ended.", "a. First item"}},
        {"List:\n\u2022 Buy milk\n\u2022 eggs", {"List:", "\u2022 Buy milk", "\u2022 eggs"}},
        {"the plan\na.m. starts early", {"the plan\na.m. starts early"}},
        {"I. Introduction\nII. Methods\niv) Results",
         {"I. Introduction", "II. Methods", "iv) Results"}},
    };
    return table;
}

std::vector<std::string> sentencesOf(const char* text) {
    std::vector<std::string> out;
    for (const std::u16string& s : TextSegmenter::sentences(fromUtf8(text))) {
        out.push_back(toUtf8(s));
    }
    return out;
}

TEST(SentenceCases, AllHold) {
    for (const SentenceCase& c : cases()) {
        std::vector<std::string> expected(c.expected.begin(), c.expected.end());
        EXPECT_EQ(sentencesOf(c.text), expected) << "sentences of: " << c.text;
    }
}

} // namespace
} // namespace lectorbell
