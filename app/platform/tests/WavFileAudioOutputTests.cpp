#include "platform/WavFileAudioOutput.hpp"

#include <array>
#include <csignal>
#include <deque>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace lectorbell::platform {
namespace {

// Writes every callback as one line: "start 1", "finish 1", "fail <message>".
class RecordingListener final : public AudioOutputListener {
public:
    void audioBufferDidStart(AudioBufferId id) override { add("start " + std::to_string(id)); }
    void audioBufferDidFinish(AudioBufferId id) override { add("finish " + std::to_string(id)); }
    void audioOutputDidFail(const std::string& message) override { add("fail " + message); }
    void add(std::string line) { lines.push_back(std::move(line)); }

    std::vector<std::string> lines;
};

// While it lives, files of this process grow to `bytes` and no further, as on a disk that fills
// up: a write past the limit fails ("File too large") instead of ending the process.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
        : previous_{std::signal(SIGXFSZ, SIG_IGN)} {
        getrlimit(RLIMIT_FSIZE, &saved_);
        rlimit limited{bytes, saved_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, previous_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*previous_)(int);
    rlimit saved_{};
};

std::uint32_t littleEndianAt(const std::string& path, std::streamoff offset) {
    std::ifstream file{path, std::ios::binary};
    file.seekg(offset);
    std::array<unsigned char, 4> b{};
    file.read(reinterpret_cast<char*>(b.data()), 4);
    return b[0] | b[1] << 8U | b[2] << 16U | static_cast<std::uint32_t>(b[3]) << 24U;
}

TEST(WavFileAudioOutput, AFileThatTakesNothingFailsAtStart) {
    WavFileAudioOutput output{"/dev/full", [](const std::function<void()>&) {}};
    const std::optional<std::string> expected{"cannot write /dev/full: No space left on device"};
    EXPECT_EQ(output.start({1000, 1}), expected);
    EXPECT_EQ(output.failure(), expected);
}

TEST(WavFileAudioOutput, AWriteThatFailsPartWayFailsOnceAndKeepsAPlayableFile) {
    const std::string path =
        ::testing::TempDir() + "lectorbell-wav-" + std::to_string(::getpid()) + ".wav";
    std::deque<std::function<void()>> mainQueue;
    auto drain = [&] {
        for (; !mainQueue.empty(); mainQueue.pop_front()) {
            mainQueue.front()();
        }
    };
    RecordingListener listener;
    // 400 frames of mono are 800 bytes: after the 44-byte header there is room for two buffers
    // and a part of the third.
    constexpr std::size_t bufferBytes = 800;
    {
        FileSizeLimit limit{44 + 2 * bufferBytes + 100};
        WavFileAudioOutput output{
            path, [&](std::function<void()> work) { mainQueue.push_back(std::move(work)); }};
        output.setListener(&listener);
        ASSERT_EQ(output.start({1000, 1}), std::nullopt);
        for (int i = 0; i < 4; ++i) {
            output.schedule(PcmSamples(bufferBytes / 2, 1000));
        }
        drain();
        const std::string failure = "cannot write " + path + ": File too large";
        EXPECT_EQ(listener.lines, (std::vector<std::string>{"start 1", "finish 1", "start 2",
                                                            "finish 2", "fail " + failure}));
        EXPECT_EQ(output.failure(), failure);
        EXPECT_FALSE(output.isBusy());

        // Buffers scheduled later are lost too, and told once.
        listener.lines.clear();
        output.schedule(PcmSamples(10, 1000));
        output.schedule(PcmSamples(10, 1000));
        EXPECT_TRUE(listener.lines.empty()) << "never from inside schedule";
        drain();
        EXPECT_EQ(listener.lines, std::vector<std::string>{"fail " + failure});
    }
    EXPECT_EQ(littleEndianAt(path, 4), 36 + 2 * bufferBytes) << "RIFF size";
    EXPECT_EQ(littleEndianAt(path, 40), 2 * bufferBytes) << "data size: the buffers written whole";
    std::filesystem::remove(path);
}

} // namespace
} // namespace lectorbell::platform
