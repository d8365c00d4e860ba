// `lectorbell queue [--json] | add [FILE|-] | remove N | clear-listened`: the saved highlights.
// `add` saves text as the save shortcut does, from the app "Command line".

#include "cli/Stores.hpp"
#include "cli/VerbIO.hpp"
#include "cli/VerbSupport.hpp"
#include "cli/Verbs.hpp"
#include "coordinator/IsoDate.hpp"
#include "coordinator/QueueStore.hpp"
#include "lectorbell/Utf8.hpp"

#include <QDateTime>
#include <charconv>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace lectorbell::cli {

namespace {

using Json = nlohmann::ordered_json;

struct QueueArgs {
    bool json = false;
    std::string input;
    std::string position;
};

std::string localTime(Date date) {
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(ms.count())
        .toLocalTime()
        .toString(QStringLiteral("yyyy-MM-dd HH:mm"))
        .toStdString();
}

// The first line of the text, at most 60 characters.
std::string preview(const std::u16string& text) {
    constexpr qsizetype longest = 60;
    QString whole = QString::fromStdU16String(text).trimmed();
    qsizetype lineEnd = whole.indexOf(QLatin1Char('\n'));
    QString shown = whole.left(lineEnd).simplified();
    if (shown.size() > longest || lineEnd >= 0) {
        shown = shown.left(longest) + QStringLiteral("…");
    }
    return shown.toStdString();
}

int listQueue(platform::Platform& platform, bool json) {
    Stores stores = makeStores(platform);
    coordinator::QueueStore queue{stores.dataFolder};
    const std::vector<coordinator::QueueItem>& items = queue.items();
    if (json) {
        Json array = Json::array();
        for (std::size_t i = 0; i < items.size(); ++i) {
            const coordinator::QueueItem& item = items[i];
            array.push_back(Json{{"index", i + 1},
                                 {"date", coordinator::isoDate(item.date)},
                                 {"appName", item.appName},
                                 {"bundleID", item.bundleID ? Json(*item.bundleID) : Json{}},
                                 {"listened", item.listened},
                                 {"text", toUtf8(item.text)}});
        }
        std::cout << array.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
        return 0;
    }
    if (items.empty()) {
        std::cout << "The queue is empty.\n";
        return 0;
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        const coordinator::QueueItem& item = items[i];
        std::cout << i + 1 << ". " << (item.listened ? "listened " : "new      ")
                  << localTime(item.date) << "  " << item.appName << "  " << preview(item.text)
                  << '\n';
    }
    return 0;
}

int addToQueue(platform::Platform& platform, const std::string& input) {
    std::optional<std::u16string> text = readTextInput(input, std::cerr);
    if (!text) {
        return exitBadInput;
    }
    if (QString::fromStdU16String(*text).trimmed().isEmpty()) {
        return refuse("queue add: there is no text to save");
    }
    Stores stores = makeStores(platform);
    coordinator::QueueStore queue{stores.dataFolder};
    coordinator::QueueItem item;
    item.date = std::chrono::system_clock::now();
    item.appName = "Command line";
    item.text = std::move(*text);
    queue.add(std::move(item));
    std::cout << "Saved to the queue (" << queue.items().size() << " items).\n";
    return 0;
}

int removeFromQueue(platform::Platform& platform, const std::string& position) {
    std::size_t n = 0;
    auto [end, error] = std::from_chars(position.data(), position.data() + position.size(), n);
    if (position.empty() || error != std::errc{} || end != position.data() + position.size() ||
        n == 0) {
        return refuse("queue remove: give the item's number as `lectorbell queue` lists it");
    }
    Stores stores = makeStores(platform);
    coordinator::QueueStore queue{stores.dataFolder};
    if (n > queue.items().size()) {
        return refuse("queue remove: there is no item " + position + " (the queue holds " +
                      std::to_string(queue.items().size()) + ")");
    }
    queue.remove(queue.items()[n - 1].id);
    std::cout << "Removed item " << n << ".\n";
    return 0;
}

int clearListened(platform::Platform& platform) {
    Stores stores = makeStores(platform);
    coordinator::QueueStore queue{stores.dataFolder};
    std::size_t before = queue.items().size();
    queue.clearListened();
    std::cout << "Removed " << before - queue.items().size() << " listened items.\n";
    return 0;
}

} // namespace

void addQueueVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto args = std::make_shared<QueueArgs>();
    CLI::App* verb = app.add_subcommand("queue", "List the saved highlights, or change the queue");
    verb->require_subcommand(0, 1);
    verb->add_flag("--json", args->json, "Print the queue as JSON");

    CLI::App* add = verb->add_subcommand("add", "Save text to the queue as the save shortcut does");
    add->add_option("input", args->input,
                    "A UTF-8 text file, or - (the default) for standard input");
    add->callback(
        [args, &outcome, &platform] { outcome.exitStatus = addToQueue(platform, args->input); });

    CLI::App* remove = verb->add_subcommand("remove", "Remove the item with this number");
    remove->add_option("n", args->position, "The item's number as `lectorbell queue` lists it");
    remove->callback([args, &outcome, &platform] {
        outcome.exitStatus = removeFromQueue(platform, args->position);
    });

    CLI::App* clear =
        verb->add_subcommand("clear-listened", "Remove the items already listened to");
    clear->callback([&outcome, &platform] { outcome.exitStatus = clearListened(platform); });

    verb->callback([verb, args, &outcome, &platform] {
        if (verb->get_subcommands().empty()) {
            outcome.exitStatus = listQueue(platform, args->json);
        }
    });
}

} // namespace lectorbell::cli
