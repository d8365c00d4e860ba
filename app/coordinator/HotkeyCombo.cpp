#include "coordinator/HotkeyCombo.hpp"

#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

namespace lectorbell::coordinator {

namespace {

// The physical keys by code (the ANSI layout's legends).
constexpr std::array<std::pair<std::uint32_t, std::string_view>, 48> keyNames{{
    {0, "A"},  {1, "S"},  {2, "D"},   {3, "F"},  {4, "H"},       {5, "G"},  {6, "Z"},  {7, "X"},
    {8, "C"},  {9, "V"},  {10, "§"},  {11, "B"}, {12, "Q"},      {13, "W"}, {14, "E"}, {15, "R"},
    {16, "Y"}, {17, "T"}, {18, "1"},  {19, "2"}, {20, "3"},      {21, "4"}, {22, "6"}, {23, "5"},
    {24, "="}, {25, "9"}, {26, "7"},  {27, "-"}, {28, "8"},      {29, "0"}, {30, "]"}, {31, "O"},
    {32, "U"}, {33, "["}, {34, "I"},  {35, "P"}, {36, "Return"}, {37, "L"}, {38, "J"}, {39, "'"},
    {40, "K"}, {41, ";"}, {42, "\\"}, {43, ","}, {44, "/"},      {45, "N"}, {46, "M"}, {47, "."},
}};

std::string keyName(std::uint32_t keyCode) {
    if (keyCode == HotkeyKey::space) {
        return "Space";
    }
    if (keyCode == HotkeyKey::belowEsc) {
        return "`";
    }
    for (const auto& [code, name] : keyNames) {
        if (code == keyCode) {
            return std::string{name};
        }
    }
    return "Key " + std::to_string(keyCode);
}

} // namespace

std::string linuxDisplay(std::uint32_t keyCode, std::uint32_t modifiers) {
    if (modifiers == 0 && keyCode == HotkeyKey::belowEsc) {
        return "` (key below Esc)";
    }
    if (modifiers == 0 && keyCode == HotkeyKey::isoBelowEsc) {
        return "§ (ISO key below Esc)";
    }
    std::string display;
    // The order of the platform's menus: Ctrl, Alt, Shift, Super.
    for (auto [bit, name] :
         {std::pair{HotkeyModifier::control, "Ctrl+"}, std::pair{HotkeyModifier::option, "Alt+"},
          std::pair{HotkeyModifier::shift, "Shift+"},
          std::pair{HotkeyModifier::command, "Super+"}}) {
        if ((modifiers & bit) != 0) {
            display += name;
        }
    }
    return display + keyName(keyCode);
}

std::string encodeHotkey(const HotkeyCombo& combo) {
    nlohmann::ordered_json object{
        {"keyCode", combo.keyCode}, {"modifiers", combo.modifiers}, {"display", combo.display}};
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::optional<HotkeyCombo> decodeHotkey(std::string_view json, std::string* whyNot) {
    auto fail = [whyNot](const char* reason) -> std::optional<HotkeyCombo> {
        if (whyNot) {
            *whyNot = reason;
        }
        return std::nullopt;
    };
    nlohmann::json parsed = nlohmann::json::parse(json, nullptr, false);
    if (parsed.is_discarded() || !parsed.is_object()) {
        return fail("not a JSON object");
    }
    auto code = parsed.find("keyCode");
    auto modifiers = parsed.find("modifiers");
    auto display = parsed.find("display");
    if (code == parsed.end() || modifiers == parsed.end() || display == parsed.end()) {
        return fail("needs the keys \"keyCode\", \"modifiers\" and \"display\"");
    }
    constexpr auto most = std::numeric_limits<std::uint32_t>::max();
    if (!code->is_number_unsigned() || code->get<std::uint64_t>() > most ||
        !modifiers->is_number_unsigned() || modifiers->get<std::uint64_t>() > most) {
        return fail("\"keyCode\" and \"modifiers\" must be whole numbers from 0 to 4294967295");
    }
    if (!display->is_string()) {
        return fail("\"display\" must be a string");
    }
    return HotkeyCombo{static_cast<std::uint32_t>(code->get<std::uint64_t>()),
                       static_cast<std::uint32_t>(modifiers->get<std::uint64_t>()),
                       display->get<std::string>()};
}

} // namespace lectorbell::coordinator
