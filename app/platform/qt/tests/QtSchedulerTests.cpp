#include "platform/qt/QtScheduler.hpp"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace lectorbell::platform::qt {
namespace {

class QtSchedulerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static int argc = 1;
        static char name[] = "QtSchedulerTests";
        static char* argv[] = {name, nullptr};
        static QCoreApplication app{argc, argv};
    }

    // Runs the event loop until `done` holds or `seconds` pass on the scheduler's clock.
    template <typename Done>
    bool runUntil(Done done, double seconds = 2.0) {
        const double until = scheduler->uptime() + seconds;
        while (!done() && scheduler->uptime() < until) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        return done();
    }

    std::unique_ptr<QtScheduler> scheduler = std::make_unique<QtScheduler>();
};

TEST_F(QtSchedulerTest, TasksPostedFromOtherThreadsRunOnTheMainThreadInOrder) {
    std::vector<int> ran;
    std::vector<bool> onMain;
    std::thread worker{[&] {
        for (int i = 0; i < 20; ++i) {
            scheduler->post([&, i] {
                ran.push_back(i);
                onMain.push_back(QThread::currentThread() ==
                                 QCoreApplication::instance()->thread());
            });
        }
    }};
    worker.join();
    ASSERT_TRUE(runUntil([&] { return ran.size() == 20; }));
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(ran[static_cast<std::size_t>(i)], i);
    }
    EXPECT_EQ(std::count(onMain.begin(), onMain.end(), false), 0);
}

TEST_F(QtSchedulerTest, ATimerNeverRunsBeforeItsTimeOnTheSharedClock) {
    const double start = scheduler->uptime();
    std::vector<double> firedAfter;
    std::vector<TimerHandle> timers;
    for (double delay : {0.15, 0.0, 0.35, 0.1505}) {
        timers.push_back(scheduler->after(
            delay, [&, delay] { firedAfter.push_back(scheduler->uptime() - start - delay); }));
    }
    EXPECT_TRUE(timers[0].pending());
    ASSERT_TRUE(runUntil([&] { return firedAfter.size() == 4; }));
    for (double late : firedAfter) {
        EXPECT_GE(late, 0.0);
        EXPECT_LT(late, 0.5); // late only by what a busy machine costs
    }
    EXPECT_FALSE(timers[0].pending());
    // The shared clock of the reading core reads the same time.
    EXPECT_NEAR(scheduler->uptime(), monotonicUptime(), 0.01);
}

TEST_F(QtSchedulerTest, ACancelledOrDroppedTimerNeverRuns) {
    int ran = 0;
    TimerHandle cancelled = scheduler->after(0.01, [&] { ran += 1; });
    cancelled.cancel();
    EXPECT_FALSE(cancelled.pending());
    {
        TimerHandle dropped = scheduler->after(0.01, [&] { ran += 10; });
    }
    TimerHandle replaced = scheduler->after(0.01, [&] { ran += 100; });
    replaced = scheduler->after(0.02, [&] { ran += 1000; });
    bool marker = false;
    TimerHandle last = scheduler->after(0.05, [&] { marker = true; });
    ASSERT_TRUE(runUntil([&] { return marker; }));
    EXPECT_EQ(ran, 1000);
}

TEST_F(QtSchedulerTest, WorkStillQueuedWhenTheSchedulerGoesIsDropped) {
    int ran = 0;
    scheduler->post([&] { ++ran; });
    TimerHandle timer = scheduler->after(0.0, [&] { ++ran; });
    scheduler.reset();
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(ran, 0);
}

} // namespace
} // namespace lectorbell::platform::qt
