// The answers of a loop window. This target is the system's message queue: the first
// byte is what the queue is like, the lines after it are the replies. The first one
// answers the handshake, and each command takes replies to one that begins with "1". A
// reply that begins with "^" is one that does not come, with "~" one after the queue.
#include "mqueue.h"
#include "res_window.h"
#include "state_keeper.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <sys/msg.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

struct Queue {
    char manner = ' ';    // "n" there is none, "e" an error, "o" of another user, "f" it is gone,
                          // "g" after the handshake, "s" it has no room
    std::string replies;  // lines not yet read
    bool greeted = false; // the handshake was answered
    int commands = 0;     // not yet answered
    int looks = 0;        // in vain, one after the other
};
Queue queue;

std::string take_reply() {
    if (queue.replies.empty()) {
        return "1";
    }
    const std::size_t end = std::min(queue.replies.find('\n'), queue.replies.size());
    std::string line = queue.replies.substr(0, std::min(end, mq_text_size));
    queue.replies.erase(0, end + 1);
    return line;
}

// The time-out rings.
int wait_in_vain() {
    static_cast<void>(std::raise(SIGALRM));
    errno = EINTR;
    return -1;
}

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int msgget(key_t /*key*/, int /*flags*/) noexcept {
    errno = queue.manner == 'n' ? ENOENT : EACCES;
    return queue.manner == 'n' || queue.manner == 'e' ? -1 : 3;
}

extern "C" int msgctl(int /*id*/, int /*command*/, msqid_ds* info) noexcept {
    info->msg_perm.uid = geteuid() + (queue.manner == 'o' ? 1 : 0);
    info->msg_perm.cuid = geteuid();
    return 0;
}

extern "C" int msgsnd(int /*id*/, const void* /*message*/, std::size_t size, int /*flags*/) {
    require(size > 0 && size <= mq_text_size);
    if (queue.manner == 'f' || (queue.manner == 'g' && queue.greeted)) {
        errno = EIDRM;
        return -1;
    }
    if (queue.manner == 's' && queue.greeted) {
        return wait_in_vain();
    }
    ++queue.commands;
    queue.looks = 0;
    return 0;
}

extern "C" ssize_t msgrcv(int /*id*/, void* message, std::size_t size, long type, int /*flags*/) {
    constexpr int most_looks = 1; // more wait for an answer that nobody owes
    if (queue.commands == 0) {
        errno = ENOMSG;
        return ++queue.looks > most_looks ? wait_in_vain() : -1;
    }
    queue.looks = 0;
    const std::string reply = take_reply();
    const bool silent = reply.starts_with('^');
    const bool gone = reply.starts_with('~');
    if (!queue.greeted || silent || gone || reply.starts_with('1')) {
        queue.greeted = true;
        --queue.commands;
    }
    if (silent || gone) {
        errno = EIDRM;
        return silent ? wait_in_vain() : -1;
    }
    require(reply.size() <= size);
    std::memcpy(message, &type, sizeof type);
    std::memcpy(static_cast<char*>(message) + sizeof type, reply.data(), reply.size());
    return static_cast<ssize_t>(reply.size());
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::array<RES_defobj, 4> rows{}; // and the end
    rows[0].def = "plot_param";
    rows[1].def = "label";
    rows[2].def = "hour";
    MESS_set(0, 0);
    MQ_set_timeout(9);
    MQ_set_handler([] {});
    queue = {};
    if (size > 0) {
        queue.manner = static_cast<char>(data[0]);
        queue.replies.assign(data + 1, data + size);
    }
    const std::string number = queue.manner == 'x' ? "x" : "7";
    RES_put_again("label", "ul:own");
    RES_link_window(number.c_str(), rows.data());
    RES_show_window("label", nullptr);
    RES_show_window("label", std::string(200, 'l').c_str()); // longer than a message
    RES_leave_window();
    RES_show_window("label", "left");
    for (const char* name : {"plot_param", "label", "hour"}) {
        const char* value = RES_get(name);
        require(value == nullptr || std::strchr(value, '|') == nullptr);
    }
    return 0;
}
