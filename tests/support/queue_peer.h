// queue_peer.h: a small loop window for tests: a process that serves a message
// queue as the real one does, or falls silent.
#pragma once

#include <map>
#include <string>

class QueuePeer {
public:
    enum Manner { answers, refuses, silent };
    // `values`: what "query res" gives. Commands go to the file `log`, a line each.
    QueuePeer(Manner manner, std::map<std::string, std::string> values, std::string log);
    ~QueuePeer();
    QueuePeer(const QueuePeer&) = delete;
    QueuePeer& operator=(const QueuePeer&) = delete;

    bool works() const { return queue_ >= 0; } // false where there are no such queues
    int number() const { return number_; }
    void wait(); // until it has served a "quit"

private:
    void serve(Manner manner);
    void reply(int type, const std::string& text) const;

    std::map<std::string, std::string> values_;
    std::string log_;
    int number_ = 0;
    int queue_ = -1;
    int pid_ = -1;
};
