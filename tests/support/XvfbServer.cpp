#include "XvfbServer.hpp"

#include <X11/Xlib.h>
#include <cstdlib>
#include <poll.h>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace lectorbell::testing {

std::unique_ptr<XvfbServer> XvfbServer::start(int width, int height) {
    int fds[2];
    if (pipe(fds) != 0) {
        return nullptr;
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
        return nullptr;
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
        return nullptr;
    }
    std::string display = ":" + number;
    setenv("DISPLAY", display.c_str(), 1);
    ::Display* client = XOpenDisplay(display.c_str());
    if (client == nullptr) {
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
        return nullptr;
    }
    return std::unique_ptr<XvfbServer>(new XvfbServer(pid, display, client));
}

XvfbServer::~XvfbServer() {
    XCloseDisplay(client_);
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
}

} // namespace lectorbell::testing
