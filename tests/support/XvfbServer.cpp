#include "XvfbServer.hpp"

#include <X11/Xlib.h>
#include <cstdlib>
#include <poll.h>
#include <signal.h>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace lectorbell::testing {

namespace {

std::string& failure() {
    static std::string reason;
    return reason;
}

std::unique_ptr<XvfbServer> failed(std::string reason) {
    failure() = std::move(reason);
    return nullptr;
}

} // namespace

bool XvfbServer::installed() {
    const char* path = std::getenv("PATH");
    std::string_view rest = path != nullptr ? path : "";
    while (!rest.empty()) {
        std::size_t colon = rest.find(':');
        std::string folder{rest.substr(0, colon)};
        if (!folder.empty() && access((folder + "/Xvfb").c_str(), X_OK) == 0) {
            return true;
        }
        rest = colon == std::string_view::npos ? std::string_view{} : rest.substr(colon + 1);
    }
    return false;
}

const std::string& XvfbServer::lastFailure() {
    return failure();
}

std::unique_ptr<XvfbServer> XvfbServer::start(int width, int height) {
    int fds[2];
    if (pipe(fds) != 0) {
        return failed("Xvfb did not start: no pipe for its display number");
    }
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    const std::string fd = std::to_string(fds[1]);
    pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", screen.c_str(),
               "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    if (pid < 0) {
        close(fds[0]);
        return failed("Xvfb did not start: fork failed");
    }
    // Xvfb writes its display number once it accepts connections.
    std::string number;
    pollfd waiting{fds[0], POLLIN, 0};
    while (poll(&waiting, 1, 10'000) > 0) {
        char c = 0;
        if (read(fds[0], &c, 1) != 1 || c == '\n') {
            break;
        }
        number.push_back(c);
    }
    close(fds[0]);
    if (number.empty()) {
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
        return failed("Xvfb did not start: it gave no display number within 10 s");
    }
    std::string display = ":" + number;
    setenv("DISPLAY", display.c_str(), 1);
    ::Display* client = XOpenDisplay(display.c_str());
    if (client == nullptr) {
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
        return failed("Xvfb started on " + display + " but refused a connection");
    }
    return std::unique_ptr<XvfbServer>(new XvfbServer(pid, display, client));
}

XvfbServer::~XvfbServer() {
    XCloseDisplay(client_);
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
}

} // namespace lectorbell::testing
