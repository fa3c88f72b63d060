// queue_peer.h: a small loop window for tests: a process that serves a message
// queue as the real one does, refuses, or falls silent.
#pragma once

#include <array>
#include <csignal>
#include <fstream>
#include <map>
#include <string>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/wait.h>
#include <unistd.h>

class QueuePeer {
public:
    enum Manner { answers, refuses, silent, floods, drips };
    using Values = std::map<std::string, std::string>;

    // `values`: what "query res" gives. Commands go to the file `log`, a line each.
    QueuePeer(Manner manner, const Values& values, const std::string& log) {
        for (const int type : {2, conn_id}) {
            reply(type, "0left over from another client\n"); // to be passed over
        }
        pid_ = queue_ < 0 ? -1 : fork();
        if (pid_ == 0) {
            alarm(20); // never outlives a test that went wrong
            serve(manner, values, log);
            _exit(0);
        }
    }
    ~QueuePeer() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            wait();
        }
        if (queue_ >= 0) {
            msgctl(queue_, IPC_RMID, nullptr);
        }
    }
    QueuePeer(const QueuePeer&) = delete;
    QueuePeer& operator=(const QueuePeer&) = delete;

    // Gives the queue to another user. False where that is not ours to do.
    bool give_away() const {
        msqid_ds info{};
        msgctl(queue_, IPC_STAT, &info);
        info.msg_perm.uid = getuid() + 1;
        return msgctl(queue_, IPC_SET, &info) == 0;
    }
    bool works() const { return queue_ >= 0; } // false where there are no such queues
    int number() const { return number_; }
    void wait() { // until it has served a "quit"
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }

private:
    static constexpr int conn_id = 5;

    struct Message {
        long type = 0;
        std::array<char, 121> text{};
    };

    void reply(int type, const std::string& text) const {
        Message message{type};
        text.copy(message.text.data(), text.size());
        msgsnd(queue_, &message, text.size(), 0);
    }

    void serve(Manner manner, const Values& values, const std::string& log_name) const {
        std::ofstream log(log_name);
        const std::string query = "query res ";
        std::string text;
        Message message;
        ssize_t length = 0;
        while (text != "quit" && (length = msgrcv(queue_, &message, 120, 1, 0)) > 0) {
            text.assign(message.text.data() + 1, static_cast<std::size_t>(length - 1));
            if (manner == silent) {
                continue;
            }
            if (message.text[0] == '/') {
                log << (text == std::to_string(getuid()) ? "hello" : "stranger") << std::endl;
                reply(2, manner == refuses ? "1no" : "2" + std::to_string(conn_id));
                continue;
            }
            while (manner == floods || manner == drips) { // an answer that never ends
                reply(conn_id, "0x\n");
                usleep(manner == drips ? 100000 : 0);
            }
            log << (message.text[0] == conn_id + '0' ? "" : "wrong connection: ");
            if (!text.starts_with(query)) {
                log << text << std::endl;
                reply(conn_id, "0passed over\n");
            } else if (const auto found = values.find(text.substr(query.size()));
                       found != values.end()) {
                reply(conn_id, "0" + found->second);
            }
            reply(conn_id, "1");
        }
    }

    int number_ = 0x5A000000 + getpid();
    int queue_ = msgget(number_, IPC_CREAT | IPC_EXCL | 0600);
    int pid_ = -1;
};
