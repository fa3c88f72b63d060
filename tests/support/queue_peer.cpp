#include "queue_peer.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <fstream>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int conn_id = 5;

struct Message {
    long type = 0;
    std::array<char, 121> text{};
};

} // namespace

QueuePeer::QueuePeer(Manner manner, std::map<std::string, std::string> values, std::string log)
    : values_(std::move(values)), log_(std::move(log)), number_(0x5A000000 + getpid()),
      queue_(msgget(number_, IPC_CREAT | IPC_EXCL | 0600)) {
    if (queue_ < 0) {
        return;
    }
    pid_ = fork();
    if (pid_ == 0) {
        alarm(20); // never outlives a test that went wrong
        serve(manner);
        _exit(0);
    }
}

QueuePeer::~QueuePeer() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        wait();
    }
    if (queue_ >= 0) {
        msgctl(queue_, IPC_RMID, nullptr);
    }
}

void QueuePeer::wait() {
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

void QueuePeer::reply(int type, const std::string& text) const {
    Message message;
    message.type = type;
    std::copy(text.begin(), text.end(), message.text.begin());
    msgsnd(queue_, &message, text.size(), 0);
}

void QueuePeer::serve(Manner manner) {
    std::ofstream log(log_);
    const std::string query = "query res ";
    const std::string accepted{'2', '0' + conn_id};
    Message message;
    ssize_t length = 0;
    while ((length = msgrcv(queue_, &message, 120, 1, 0)) > 0) {
        const std::string text(message.text.data() + 1, static_cast<std::size_t>(length - 1));
        if (manner == silent) {
            continue;
        }
        if (message.text[0] == '/') {
            log << (text == std::to_string(getuid()) ? "hello" : "stranger") << std::endl;
            reply(2, manner == refuses ? "1no" : accepted);
            continue;
        }
        log << (message.text[0] == conn_id + '0' ? "" : "wrong connection: ");
        if (text.compare(0, query.size(), query) == 0) {
            const auto value = values_.find(text.substr(query.size()));
            if (value != values_.end()) {
                reply(conn_id, "0" + value->second);
            }
        } else {
            log << text << std::endl;
            reply(conn_id, "0passed over\n");
        }
        reply(conn_id, "1");
        if (text == "quit") {
            return;
        }
    }
}
