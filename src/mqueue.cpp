// mqueue.cpp: the link to a running loop window, a System V message queue. It
// owns the queue number, the time-out and its handler. MQ_open comes first,
// then MQ_connect. A window that stays silent for the time-out ends the
// program: a broken one is not to be mistaken for none.
#include "mqueue.h"
#include "text_num.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr unsigned trace_level = 0x80000000;
constexpr long to_window = 1;
constexpr int no_connection = -1; // who sends the handshake
constexpr int handshake_type = 2; // who gets the answer to it
constexpr int code_connected = 2;
constexpr int max_conn_id = 255 - '0'; // has to fit a character
constexpr int no_message = -2;
constexpr int default_timeout = 20; // seconds

// Waiting between tries of MQ_get: none at first, then short, then long.
constexpr int first_short_wait = 3;
constexpr int first_long_wait = 201;
constexpr float short_wait = 0.1F; // seconds
constexpr float long_wait = 1.0F;

struct mqueuebuf {
    long mtype = 0;
    std::array<char, mq_text_size + 1> mtext{}; // and a closing zero
};

struct State {
    int msgqid = -1;
    int offset = 0; // added to a queue number to form its key
    int timeout = default_timeout;
    void (*to_func)() = nullptr;
    bool answering = false; // the time-out runs over a whole answer
};
State state;

// All that the signal does: the waiting routine acts on it.
volatile std::sig_atomic_t expired = 0;

extern "C" void note_alarm(int) {
    expired = 1;
}

// Calls the handler once the time-out has run out. Returns whether it had, for
// a handler that comes back.
bool timed_out() {
    if (expired == 0) {
        return false;
    }
    MQ_disable_alarm();
    (state.to_func != nullptr ? state.to_func : MQ_intrp)();
    return true;
}

void set_timer(int seconds) {
    itimerval timer{};
    timer.it_value.tv_sec = seconds;
    // It rings on, so that a ring just before a blocking call does no harm.
    timer.it_interval.tv_sec = seconds > 0 ? 1 : 0;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

// One try at a message: its length, no_message, or -1.
int receive(int queue, int type, mqueuebuf& message) {
    const ssize_t length = msgrcv(queue, &message, mq_text_size, type, IPC_NOWAIT);
    if (length < 0) {
        return errno == ENOMSG || errno == EINTR ? no_message : -1;
    }
    message.mtext[length] = '\0';
    return static_cast<int>(length);
}

} // namespace

int MQ_open(int number) {
    struct sigaction action {};
    action.sa_handler = note_alarm;
    sigaction(SIGALRM, &action, nullptr);
    state.msgqid = msgget(static_cast<key_t>(static_cast<unsigned>(number) + state.offset), 0);
    if (state.msgqid < 0) {
        return errno == ENOENT ? -1 : 0;
    }
    msqid_ds info{};
    if (msgctl(state.msgqid, IPC_STAT, &info) != 0 || info.msg_perm.uid != geteuid() ||
        info.msg_perm.cuid != geteuid()) {
        MESS_print(mess_warn, "MQ_open: The queue is another user's: %d\n", number);
        state.msgqid = -1;
        return 0;
    }
    return state.msgqid;
}

int MQ_connect(int queue) {
    if (queue != state.msgqid) {
        return -1; // MQ_open failed
    }
    MQ_clear(queue, handshake_type);
    if (MQ_put(queue, no_connection, "%u", static_cast<unsigned>(getuid())) < 0) {
        return -1;
    }
    std::array<char, mq_text_size> text{};
    if (MQ_get(queue, handshake_type, text.data()) != code_connected) {
        return -1;
    }
    int conn_id = 0;
    std::string_view answer = text.data();
    take_plain(&answer, &conn_id);
    if (conn_id < 1 || conn_id > max_conn_id) {
        return -1;
    }
    MQ_clear(queue, conn_id);
    return conn_id;
}

int MQ_put(int queue, int conn_id, const char* format, ...) {
    mqueuebuf message;
    message.mtype = to_window;
    message.mtext[0] = static_cast<char>(conn_id + '0');
    std::va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(message.mtext.data() + 1, mq_text_size, format, args);
    va_end(args);
    const char* text = message.mtext.data() + 1;
    MESS_print(trace_level, "PUT:%d:%s\n", conn_id, text);
    if (length < 0 || static_cast<std::size_t>(length) >= mq_text_size) {
        MESS_print(mess_warn, "MQ_put: message too long: %s\n", text);
        return -1;
    }
    MQ_enable_alarm();
    int result = 0;
    do {
        result = msgsnd(queue, &message, static_cast<std::size_t>(length) + 1, 0);
    } while (result < 0 && errno == EINTR && !timed_out());
    MQ_disable_alarm();
    return result;
}

int MQ_get(int queue, int conn_id, char* buffer) {
    mqueuebuf message;
    int tries = 0;
    int result = no_message;
    if (!state.answering) {
        MQ_enable_alarm();
    }
    while (result == no_message) {
        result = timed_out() ? -1 : receive(queue, conn_id, message);
        ++tries;
        MESS_print(trace_level, "GET-MSG:%d %d %d %d\n", queue, conn_id, result, tries);
        if (result == no_message && tries >= first_short_wait) {
            ZYR_sleep(tries >= first_long_wait ? long_wait : short_wait);
        }
    }
    if (!state.answering) {
        MQ_disable_alarm();
    }
    MESS_print(trace_level, "GET:%s\n", message.mtext.data());
    if (result < 0) {
        buffer[0] = '\0';
        return result;
    }
    if (result == 0) {
        buffer[0] = '\0'; // not even a code
        return -1;
    }
    copy_text(buffer, mq_text_size, message.mtext.data() + 1);
    return message.mtext[0] - '0';
}

void MQ_begin_answer() {
    MQ_enable_alarm();
    state.answering = true;
}

void MQ_end_answer() {
    state.answering = false;
    MQ_disable_alarm();
}

int MQ_clear(int queue, int type) {
    constexpr int most = 10000; // of a queue that is filled as fast as it is drained
    mqueuebuf message;
    for (int i = 0; i < most && receive(queue, type, message) >= 0; ++i) {
    }
    return 0;
}

void MQ_enable_alarm() {
    expired = 0;
    set_timer(state.timeout);
}

void MQ_disable_alarm() {
    set_timer(0);
    expired = 0;
}

void MQ_intrp() {
    MESS_print(mess_warn, "Queue not responding!!\n");
    ZYR_exit(end_loop);
}

void MQ_set_timeout(int seconds) {
    state.timeout = std::max(seconds, 1);
}

void MQ_set_handler(void (*handler)()) {
    state.to_func = handler;
}
