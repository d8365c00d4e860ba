#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace lectorbell::cli {

// Exit status of a verb given input it cannot use.
inline constexpr int exitBadInput = 2;
// Exit status of a verb whose work failed (a store or a server said no).
inline constexpr int exitFailed = 1;

// Prints "lectorbell: <message>" as one line on standard error and returns exitBadInput.
int refuse(std::string_view message);

// The Qt application that the key store and the network need for their event loop; made once
// for the process.
QCoreApplication& qtApplication();

// Starts asynchronous work that reports its result through a callback, and runs the event loop
// until the result is there.
template <typename Result>
Result waitFor(const std::function<void(std::function<void(Result)>)>& start) {
    qtApplication();
    std::optional<Result> result;
    QEventLoop loop;
    start([&result, &loop](Result value) {
        result = std::move(value);
        loop.quit();
    });
    if (!result) {
        loop.exec();
    }
    return std::move(*result);
}

} // namespace lectorbell::cli
