#include "PageLayouts.hpp"

namespace lectorbell::pages {

namespace {

Item textItem(QString role, QString text, double x, double width, double top = -1) {
    Item item;
    item.role = std::move(role);
    item.text = std::move(text);
    item.x = x;
    item.width = width;
    item.top = top;
    return item;
}

Item inFlow(int flow, Item item) {
    item.flow = flow;
    return item;
}

Page named(QString name) {
    Page page;
    page.name = std::move(name);
    return page;
}

Item title(QString text, double x, double top, double width) {
    Item item = textItem("title", std::move(text), x, width, top);
    item.pixelSize = 26;
    item.bold = true;
    return item;
}

Item heading(QString text, double x, double width, double gapBefore = 22) {
    Item item = textItem("heading", std::move(text), x, width);
    item.pixelSize = 19;
    item.bold = true;
    item.gapBefore = gapBefore;
    return item;
}

Item body(QString text, double x, double width, double top = -1) {
    return textItem("body", std::move(text), x, width, top);
}

Item listItem(QString text, double x, double width) {
    Item item = textItem("listItem", std::move(text), x, width);
    item.gapBefore = 6;
    return item;
}

Page oneColumn() {
    Page page = named("one-column");
    page.items = {
        title("Morning Light over the Harbour", 80, 40, 800),
        body("The first ferries leave before the sun is up, and by the time the light reaches the "
             "water the quay is already busy with people who have done this journey a thousand "
             "times. Nobody looks at the view. They look at their phones, or at the gulls.",
             80, 740, 100),
        body("On the far side the old warehouses have become flats, and their windows catch the "
             "light one after another, like a slow row of lamps being switched on.",
             80, 740),
        heading("What the pilots see", 80, 740),
        body("From the bridge of the ferry the harbour looks smaller than it does from the shore. "
             "The pilots know every buoy by name, and they talk about the tide the way other "
             "people talk about the weather.",
             80, 740),
    };
    return page;
}

Page twoColumns() {
    Page page = named("two-columns");
    page.items = {
        title("Notes on Growing Tomatoes", 80, 40, 860),
        body("Tomatoes want warmth more than anything else. Sow them indoors in early spring, "
             "keep the seedlings on a bright windowsill, and turn the pots every day so the stems "
             "grow straight.",
             80, 400, 100),
        body("When the nights stay above ten degrees, plant them out in the sunniest corner you "
             "have. Water at the roots, never over the leaves.",
             80, 400),
        inFlow(
            1,
            body(
                "Pinch out the side shoots that appear where a leaf meets the stem. Each one would "
                "become another stem, and the plant would spend its strength on leaves instead of "
                "fruit.",
                540, 400, 100)),
        inFlow(
            1,
            body("Pick the fruit as soon as it colours. A tomato left on the vine too long splits "
                 "after rain, and the birds find it before you do.",
                 540, 400)),
    };
    return page;
}

Page sidebar() {
    Page page = named("sidebar");
    auto nav = [](QString text, double top) {
        Item item = textItem("navigation", std::move(text), 40, 140, top);
        item.flow = 1;
        return item;
    };
    page.items = {
        nav("Home", 60),
        nav("News", 100),
        nav("Sport", 140),
        nav("Weather", 180),
        nav("Contact", 220),
        title("Library Opens Late on Thursdays", 280, 50, 660),
        body("From next month the central library will stay open until nine in the evening every "
             "Thursday. The change follows a survey in which most readers said they could not "
             "visit during working hours.",
             280, 640, 110),
        body("The reading room, the children's corner and the computer desks will all be "
             "available. The café on the ground floor will close at six as before.",
             280, 640),
        body("Staff say the first late evenings will be treated as a trial, and the hours may "
             "change again in the spring if few people come.",
             280, 640),
    };
    return page;
}

Page table() {
    Page page = named("table");
    Item figures;
    figures.role = "table";
    figures.x = 80;
    figures.top = 110;
    figures.rows = {
        {"Region", "Visitors", "Tickets", "Revenue"}, {"North", "1,204", "986", "14,790"},
        {"South", "2,317", "1,842", "27,630"},        {"East", "876", "702", "10,530"},
        {"West", "1,559", "1,311", "19,665"},
    };
    figures.columns = {{80, 160, false}, {300, 110, true}, {470, 110, true}, {640, 120, true}};
    page.items = {
        title("Museum Visitors in March", 80, 40, 800),
        figures,
        body("Visitor numbers rose in every region compared with February, helped by the school "
             "holidays and the new exhibition on early maps.",
             80, 700, 330),
    };
    return page;
}

Page lists() {
    Page page = named("lists");
    page.items = {
        title("Before the Walk", 80, 40, 800),
        body("Pack these the night before, so nothing is forgotten in the morning.", 80, 740, 100),
        listItem("\u2022 Warm socks and a spare pair", 100, 700),
        listItem("\u2022 A map of the valley", 100, 700),
        listItem("\u2022 Water and something to eat", 100, 700),
        heading("On the day", 80, 740),
        listItem("1. Leave the car at the church.", 100, 700),
        listItem("2. Follow the river path north.", 100, 700),
        listItem("3. Turn back at the bridge.", 100, 700),
    };
    page.items[2].gapBefore = 14;
    page.items[6].gapBefore = 14;
    return page;
}

Page selection() {
    Page page = named("selection");
    Item highlighted = body("The letter arrived on a Tuesday, folded twice and sealed with green "
                            "wax. Inside was a single line asking her to come to the lighthouse "
                            "before the end of the month.",
                            80, 740, 100);
    // "folded twice and sealed with green wax" (words 6 to 12).
    highlighted.selectFrom = 6;
    highlighted.selectTo = 12;
    page.items = {
        title("The Keeper's Letter", 80, 40, 800),
        highlighted,
        body("She read it three times on the bus and once more on the cliff path, where the wind "
             "tried to take it from her hands.",
             80, 740),
    };
    page.selection = "folded twice and sealed with green wax.";
    return page;
}

const QString harbourText =
    "The first ferries leave before the sun is up, and by the time the light reaches the water "
    "the quay is already busy with people who have done this journey a thousand times. Nobody "
    "looks at the view. They look at their phones, or at the gulls, or at the clock above the "
    "ticket office that has been five minutes slow for as long as anyone can remember.";

Page band() {
    Page page = named("band");
    page.width = 1280;
    page.height = 200;
    page.items = {body(harbourText + " " + harbourText, 40, 1150, 30)};
    return page;
}

Page window() {
    Page page = named("window");
    page.width = 1280;
    page.height = 800;
    page.items = {title("Morning Light over the Harbour", 40, 40, 1150),
                  body(harbourText, 40, 1150, 100), body(harbourText, 40, 1150),
                  body(harbourText, 40, 1150), body(harbourText, 40, 1150)};
    return page;
}

} // namespace

std::vector<Page> benchmarkPages() {
    return {band(), window()};
}

std::vector<Page> testPages() {
    return {oneColumn(), twoColumns(), sidebar(), table(), lists(), selection()};
}

} // namespace lectorbell::pages
