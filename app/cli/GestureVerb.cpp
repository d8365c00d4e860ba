// `lectorbell gesture [FILE|-]`: replays time-stamped reading-key events through one hold-tap
// gesture and prints the actions it emits, for tuning timings without a keyboard.

#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "lectorbell/HoldTapGesture.hpp"
#include "lectorbell/Utf8.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lectorbell::cli {

namespace {

enum class EventKind { down, up, hold, window };

constexpr std::array<std::pair<std::string_view, EventKind>, 4> eventNames{{
    {"down", EventKind::down},
    {"up", EventKind::up},
    {"hold", EventKind::hold},
    {"window", EventKind::window},
}};

struct Event {
    EventKind kind;
    double at;
    // Printed back exactly as written, so output lines match their input lines.
    std::string atText;
};

struct Script {
    bool instant = false;
    bool triple = false;
    std::vector<Event> events;
};

constexpr std::string_view blanks = " \t\r\v\f";

// The line's words, without a '#' comment.
std::vector<std::string_view> wordsOf(std::string_view line) {
    line = line.substr(0, line.find('#'));
    std::vector<std::string_view> words;
    for (std::size_t start = line.find_first_not_of(blanks); start != std::string_view::npos;
         start = line.find_first_not_of(blanks, start)) {
        const std::size_t end = std::min(line.find_first_of(blanks, start), line.size());
        words.push_back(line.substr(start, end - start));
        start = end;
    }
    return words;
}

// Seconds as a 64-bit float, read without a round trip through any other unit: the boundary
// cases of the gesture depend on the exact double.
std::optional<double> secondsIn(std::string_view word) {
    double value = 0;
    const char* end = word.data() + word.size();
    auto [stop, error] = std::from_chars(word.data(), end, value);
    if (error != std::errc{} || stop != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<EventKind> eventNamed(std::string_view word) {
    for (const auto& [name, kind] : eventNames) {
        if (name == word) {
            return kind;
        }
    }
    return std::nullopt;
}

// The reason a line is malformed, or nothing when it was taken into the script.
std::optional<std::string> takeLine(const std::vector<std::string_view>& words, Script& script) {
    const std::string first{words.front()};
    if (first == "instant" || first == "triple") {
        if (words.size() > 1) {
            return "\"" + first + "\" takes no value";
        }
        if (!script.events.empty()) {
            return "\"" + first + "\" must come before the first event";
        }
        (first == "instant" ? script.instant : script.triple) = true;
        return std::nullopt;
    }
    const std::optional<EventKind> kind = eventNamed(first);
    if (!kind) {
        return "unknown line \"" + first +
               "\" (expected instant, triple, or down, up, hold, window with a time)";
    }
    if (words.size() != 2) {
        return "\"" + first + "\" takes one time in seconds";
    }
    const std::optional<double> at = secondsIn(words[1]);
    if (!at) {
        return "\"" + std::string{words[1]} + "\" is not a time in seconds";
    }
    script.events.push_back(Event{*kind, *at, std::string{words[1]}});
    return std::nullopt;
}

// Every malformed line is reported with its number; no script when there was one.
std::optional<Script> parseScript(std::string_view text, std::ostream& err) {
    Script script;
    bool malformed = false;
    std::size_t lineNumber = 0;
    while (!text.empty()) {
        const std::size_t newline = text.find('\n');
        const std::string_view line = text.substr(0, newline);
        text = newline == std::string_view::npos ? std::string_view{} : text.substr(newline + 1);
        ++lineNumber;
        const std::vector<std::string_view> words = wordsOf(line);
        if (words.empty()) {
            continue;
        }
        if (std::optional<std::string> problem = takeLine(words, script)) {
            err << "lectorbell: gesture: line " << lineNumber << ": " << *problem << '\n';
            malformed = true;
        }
    }
    if (malformed) {
        return std::nullopt;
    }
    return script;
}

// Feeds the events to one fresh gesture. A reading counts as active from begin or
// continueLatched until stop or tripleTap, as the coordinator would see it.
void replay(const Script& script, std::ostream& out) {
    HoldTapGesture gesture{script.instant};
    gesture.tripleTapEnabled = script.triple;
    bool readingActive = false;
    for (const Event& event : script.events) {
        HoldTapGesture::Actions actions;
        switch (event.kind) {
        case EventKind::down:
            actions = gesture.keyDown(event.at, readingActive);
            break;
        case EventKind::up:
            actions = gesture.keyUp(event.at);
            break;
        case EventKind::hold:
            actions = gesture.holdTimerFired(event.at);
            break;
        case EventKind::window:
            actions = gesture.secondTapWindowExpired(event.at);
            break;
        }
        for (const HoldTapGesture::Action& action : actions) {
            using Kind = HoldTapGesture::Action::Kind;
            if (action.kind == Kind::begin || action.kind == Kind::continueLatched) {
                readingActive = true;
            } else if (action.kind == Kind::stop || action.kind == Kind::tripleTap) {
                readingActive = false;
            }
            out << event.atText << ' ' << description(action) << '\n';
        }
    }
    out.flush();
}

int runGesture(const std::string& path) {
    const std::optional<std::u16string> input = readTextInput(path, std::cerr);
    if (!input) {
        return 1;
    }
    const std::optional<Script> script = parseScript(toUtf8(*input), std::cerr);
    if (!script) {
        return 2;
    }
    replay(*script, std::cout);
    return 0;
}

} // namespace

void addGestureVerb(CLI::App& app, VerbOutcome& outcome) {
    auto* verb = app.add_subcommand(
        "gesture", "Replay timed reading-key events through the hold-tap gesture and print the "
                   "actions it emits");
    auto path = std::make_shared<std::string>("-");
    verb->add_option("FILE", *path, "Event script, or - for standard input (the default)");
    verb->footer(
        "Script: optional first lines \"instant\" (start speaking instantly) and \"triple\" "
        "(triple\n"
        "taps enabled), then one event per line: \"down T\", \"up T\", \"hold T\" (the hold timer\n"
        "fired) or \"window T\" (the second-tap window expired), T in seconds. Blank lines and\n"
        "text after '#' are ignored. Prints \"T action\" for every action emitted.\n"
        "Exit status 2 when a line is malformed.\n");
    verb->callback([path, &outcome] { outcome.exitStatus = runGesture(*path); });
}

} // namespace lectorbell::cli
