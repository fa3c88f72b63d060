#include "x_proxy.h"

#include "x_server.h"

#include <array>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int first_port = 6000; // of display 0

// A socket that listens on a free port of a display. Returns its number, or -1.
int listen_as_display(int* listener) {
    for (int number = 200 + getpid() % 500; number < 1000; ++number) {
        *listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(first_port + number));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (bind(*listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
            listen(*listener, 1) == 0) {
            return number;
        }
        close(*listener);
    }
    return -1;
}

int connect_to(const std::string& display) {
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/tmp/.X11-unix/X" + display.substr(1);
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return connect(server, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 ? server
                                                                                       : -1;
}

// Cuts the server's bytes into what they are, in the byte order of this machine.
class Counter {
public:
    explicit Counter(int* replies) : replies_(replies) {}
    void take(const char* data, std::size_t size) {
        bytes_.insert(bytes_.end(), data, data + size);
        std::size_t at = 0;
        for (std::size_t length = unit(at); length != 0; length = unit(at)) {
            at += length;
        }
        bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(at));
    }

private:
    template <typename Int> [[nodiscard]] Int number(std::size_t at) const {
        Int value = 0;
        std::memcpy(&value, &bytes_[at], sizeof value);
        return value;
    }
    // Length of the unit at a place; 0 while it is not whole.
    std::size_t unit(std::size_t at) {
        constexpr std::size_t greeting_head = 8;
        constexpr std::size_t event = 32;
        constexpr char reply = 1;
        const std::size_t left = bytes_.size() - at;
        std::size_t length = greeted_ ? event : greeting_head;
        if (left < length) {
            return 0;
        }
        const bool is_reply = greeted_ && bytes_[at] == reply;
        if (!greeted_) {
            length += std::size_t{4} * number<std::uint16_t>(at + 6);
        } else if (is_reply) {
            length += std::size_t{4} * number<std::uint32_t>(at + 4);
        }
        if (left < length) {
            return 0;
        }
        greeted_ = true;
        *replies_ += is_reply ? 1 : 0;
        return length;
    }
    int* replies_;
    bool greeted_ = false;
    std::vector<char> bytes_;
};

void pass_on(int program, int server, int* replies) {
    Counter counter(replies);
    std::array<pollfd, 2> ends = {
        {{program, POLLIN, 0}, {server, POLLIN, 0}}
    };
    std::array<char, 65536> buffer{};
    while (poll(ends.data(), ends.size(), -1) > 0) {
        for (std::size_t i = 0; i < ends.size(); ++i) {
            if (ends[i].revents == 0) {
                continue;
            }
            const ssize_t size = read(ends[i].fd, buffer.data(), buffer.size());
            if (size <= 0) {
                return;
            }
            const auto count = static_cast<std::size_t>(size);
            if (i == 1) {
                counter.take(buffer.data(), count);
            }
            if (send(ends[1 - i].fd, buffer.data(), count, MSG_NOSIGNAL) != size) {
                return;
            }
        }
    }
}

} // namespace

XProxy::XProxy(const XServer& server) {
    void* shared =
        mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    replies_ = static_cast<int*>(shared);
    int listener = -1;
    const int number = listen_as_display(&listener);
    name_ = "127.0.0.1:" + std::to_string(number);
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int up = connect_to(server.name());
        const int program = accept(listener, nullptr, nullptr);
        if (up >= 0 && program >= 0) {
            pass_on(program, up, replies_);
        }
        _exit(0);
    }
    close(listener);
}

XProxy::~XProxy() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    munmap(replies_, sizeof(int));
}
