#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace lectorbell::testing {

// A page whose article holds `count` paragraphs of one leaf each (two nodes per paragraph),
// the first under the pointer at (20, 110).
inline nlohmann::json longPage(int count, const std::string& leafText, double callCostMs = 0,
                               bool hangSecond = false) {
    using nlohmann::json;
    json paragraph = {{"repeat", count},
                      {"repeatStep", {0, 30}},
                      {"role", "AXGroup"},
                      {"frame", {10, 140, 900, 20}},
                      {"children",
                       {{{"role", "AXStaticText"},
                         {"value", leafText},
                         {"numbered", true},
                         {"frame", {10, 140, 800, 20}}}}}};
    json second = {{"role", "AXGroup"}, {"frame", {10, 130, 900, 5}}, {"timeout", hangSecond}};
    json article = {
        {"role", "AXGroup"},
        {"subrole", "AXLandmarkMain"},
        {"frame", {0, 100, 1000, 900}},
        {"children",
         {{{"role", "AXStaticText"}, {"value", "First words."}, {"frame", {10, 100, 120, 20}}},
          second,
          paragraph}}};
    return {{"pid", 7},
            {"callCostMs", callCostMs},
            {"root",
             {{"role", "AXApplication"},
              {"children",
               {{{"role", "AXWindow"},
                 {"frame", {0, 0, 1000, 1000}},
                 {"children",
                  {{{"role", "AXWebArea"},
                    {"frame", {0, 0, 1000, 1000}},
                    {"children", {article}}}}}}}}}}};
}

} // namespace lectorbell::testing
