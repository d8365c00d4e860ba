#include "cli/ProbeOutput.hpp"

#include "lectorbell/Utf8.hpp"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>

namespace lectorbell::cli {

namespace {

using nlohmann::json;

json rectJson(const ScreenRect& rect) {
    return {{"x", rect.x()}, {"y", rect.y()}, {"width", rect.width()}, {"height", rect.height()}};
}

std::string rectText(const std::optional<ScreenRect>& rect) {
    if (!rect) {
        return "none";
    }
    char buffer[96];
    std::snprintf(buffer, sizeof buffer, "%.0f,%.0f %.0fx%.0f", rect->x(), rect->y(), rect->width(),
                  rect->height());
    return buffer;
}

std::string decisionName(SelectionDecision::Kind kind) {
    switch (kind) {
    case SelectionDecision::Kind::readSelection:
        return "readSelection";
    case SelectionDecision::Kind::refuse:
        return "refuse";
    case SelectionDecision::Kind::useCursor:
        return "useCursor";
    }
    return "useCursor";
}

template <typename T, typename Convert>
json optionalJson(const std::optional<T>& value, Convert convert) {
    return value ? json(convert(*value)) : json(nullptr);
}

json observationJson(const SelectionObservation& o) {
    auto text = [](const std::u16string& s) { return toUtf8(s); };
    auto range = [](const UTF16Range& r) {
        return json{{"location", r.location}, {"length", r.length}};
    };
    auto same = [](const auto& v) { return v; };
    return {{"frontmostPID", o.frontmostPID},
            {"focusedElementPID", optionalJson(o.focusedElementPID, same)},
            {"isSecure", o.isSecure},
            {"selectedText", optionalJson(o.selectedText, text)},
            {"selectedRange", optionalJson(o.selectedRange, range)},
            {"textForSelectedRange", optionalJson(o.textForSelectedRange, text)},
            {"focusedRole", optionalJson(o.focusedRole, same)},
            {"focusedValueLength", optionalJson(o.focusedValueLength, same)},
            {"pointerOverFocusedElement", o.pointerOverFocusedElement},
            {"selectionHint", optionalJson(o.selectionHint, text)}};
}

} // namespace

void printProbeJson(const ProbeReport& report, std::ostream& out) {
    json object;
    object["pid"] = report.pid ? json(*report.pid) : json(nullptr);
    if (report.selection) {
        object["observation"] = observationJson(report.selection->observation);
        object["googleDocsHint"] = report.selection->googleDocsHint
                                       ? json(*report.selection->googleDocsHint)
                                       : json(nullptr);
    }
    if (report.decision) {
        object["decision"] = decisionName(report.decision->kind());
        if (report.decision->kind() == SelectionDecision::Kind::readSelection) {
            object["text"] = toUtf8(report.decision->text());
        }
    }
    const std::optional<ReadingError>& error = report.decision && report.decision->error()
                                                   ? report.decision->error()
                                                   : report.cursor.error;
    object["error"] = error ? json(error->userMessage()) : json(nullptr);
    if (!report.selection) {
        if (const std::optional<AXCursorResult>& result = report.cursor.result) {
            json blocks = json::array();
            for (const ReadingBlock& block : result->blocks) {
                blocks.push_back(
                    {{"role", std::string{rawValue(block.role)}},
                     {"bounds", block.bounds ? rectJson(*block.bounds) : json(nullptr)},
                     {"text", toUtf8(block.text)}});
            }
            object["result"] = {
                {"strategy", result->strategy},
                {"precision", std::string{description(result->precision)}},
                {"confidence", result->confidence ? json(std::string{rawValue(*result->confidence)})
                                                  : json(nullptr)},
                {"truncated", result->truncated},
                {"walkCut", result->walkCut},
                {"blocks", blocks}};
        } else {
            object["result"] = nullptr;
        }
    }
    object["notice"] = report.notice ? json(*report.notice) : json(nullptr);
    object["trace"] = report.trace;
    object["milliseconds"] = report.milliseconds;
    out << object.dump() << '\n';
}

void printProbeText(const ProbeReport& report, std::ostream& out) {
    if (report.selection) {
        const SelectionObservation& o = report.selection->observation;
        out << "frontmost pid: " << o.frontmostPID << '\n';
        out << "focused pid: "
            << (o.focusedElementPID ? std::to_string(*o.focusedElementPID) : "none") << '\n';
        out << "secure: " << (o.isSecure ? "true" : "false") << '\n';
        out << "focused role: " << o.focusedRole.value_or("none") << '\n';
        out << "selected text: " << (o.selectedText ? toUtf8(*o.selectedText) : "none") << '\n';
        out << "selected range: "
            << (o.selectedRange ? std::to_string(o.selectedRange->location) + "+" +
                                      std::to_string(o.selectedRange->length)
                                : "none")
            << '\n';
        out << "text for range: "
            << (o.textForSelectedRange ? toUtf8(*o.textForSelectedRange) : "none") << '\n';
        out << "value length: "
            << (o.focusedValueLength ? std::to_string(*o.focusedValueLength) : "none") << '\n';
        out << "pointer over focused: " << (o.pointerOverFocusedElement ? "true" : "false") << '\n';
        if (report.selection->googleDocsHint) {
            out << "hint: " << *report.selection->googleDocsHint << '\n';
        }
    }
    if (report.decision) {
        out << "decision: " << decisionName(report.decision->kind());
        if (report.decision->kind() == SelectionDecision::Kind::readSelection) {
            out << '\n' << toUtf8(report.decision->text());
        } else if (report.decision->error()) {
            out << '\n' << report.decision->error()->userMessage();
        }
        out << '\n';
    } else if (report.cursor.error) {
        out << report.cursor.error->userMessage() << '\n';
    } else if (const std::optional<AXCursorResult>& result = report.cursor.result) {
        out << "strategy: " << result->strategy << '\n';
        out << "precision: " << description(result->precision) << '\n';
        out << "confidence: " << (result->confidence ? rawValue(*result->confidence) : "none")
            << '\n';
        out << "truncated: " << (result->truncated ? "true" : "false") << '\n';
        out << "walkCut: " << (result->walkCut ? "true" : "false") << '\n';
        for (std::size_t i = 0; i < result->blocks.size(); ++i) {
            const ReadingBlock& block = result->blocks[i];
            out << "block " << i << " [" << rawValue(block.role) << "] " << rectText(block.bounds)
                << ": " << toUtf8(block.text) << '\n';
        }
    } else {
        out << "no accessibility text at this point\n";
    }
    if (report.notice) {
        out << "notice: " << *report.notice << '\n';
    }
    for (const std::string& line : report.trace) {
        out << "trace: " << line << '\n';
    }
    char time[48];
    std::snprintf(time, sizeof time, "time: %.1f ms\n", report.milliseconds);
    out << time;
}

} // namespace lectorbell::cli
