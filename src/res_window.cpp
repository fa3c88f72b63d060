// res_window.cpp: the link to a running loop window, which holds settings of
// its own: both sides are brought to the same ones at the start, and options
// go to the window too. It owns the connection; the message queue is mqueue's.
#include "res_window.h"

#include "mqueue.h"
#include "text_num.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

struct State {
    int queue = missing;
    int conn_id = missing; // set: connected
};
State state;

bool connected() {
    return is_set(state.conn_id);
}

// Reads the replies of an answer up to the one that ends it, and hands their texts
// to `take`. A window that floods us is given up.
template <typename Take> void read_answer(Take take) {
    constexpr int most_lines = 10000;
    std::array<char, mq_text_size> text{};
    MQ_begin_answer();
    int lines = 0;
    while (lines < most_lines && MQ_get(state.queue, state.conn_id, text.data()) == 0) {
        take(text.data());
        ++lines;
    }
    MQ_end_answer();
    if (lines == most_lines) {
        MESS_print(mess_warn, "ZYRloop window: answer ends after %d lines\n", most_lines);
        state.conn_id = missing;
    }
}

void await_reply() {
    read_answer([](char*) {});
}

// Returns whether an answer is on its way.
bool send_value(const char* def, const char* value) {
    return MQ_put(state.queue, state.conn_id, "set res %s %s", def, value) >= 0;
}

// Takes the answer to one query. Returns whether it brought a value.
bool take_value(int index, const RES_defobj& row) {
    bool arrived = false;
    read_answer([&](char* text) {
        if (text[0] == '\0' || text[0] == '!' || text[0] == '\n') {
            return;
        }
        text[std::strlen(text) - 1] = '\0';      // the line end
        if (std::strchr(text, '|') != nullptr) { // a command comes from the user alone
            MESS_print(mess_warn, "ZYRloop window: Command refused: %s %s\n", row.def, text);
            return;
        }
        RES_new(index, row.def, text, row.cvt);
        arrived = true;
    });
    return arrived;
}

// Brings both sides to the same settings: the window's win, ours fill its gaps.
void exchange_values(const RES_defobj* def_table) {
    int asked = 0;
    while (def_table[asked].def != nullptr &&
           MQ_put(state.queue, state.conn_id, "query res %s", def_table[asked].def) >= 0) {
        ++asked;
    }
    int pushed = 0;
    for (int i = 0; i < asked && connected(); ++i) {
        const RES_defobj& row = def_table[i];
        if (take_value(i, row)) {
            continue;
        }
        const char* held = RES_get(row.def);
        if (held != nullptr && connected() && send_value(row.def, held)) {
            ++pushed;
        }
    }
    for (; pushed > 0 && connected(); --pushed) {
        await_reply();
    }
}

} // namespace

void RES_link_window(const char* number, const RES_defobj* def_table) {
    const char* at = number;
    int value = 0;
    const int queue = take_int(&at, &value) ? MQ_open(value) : -1;
    if (queue == -1) {
        MESS_print(mess_warn, "ZYRloop window: %s not running or no message queue exists\n",
                   number);
        return;
    }
    const int conn_id = MQ_connect(queue);
    if (conn_id == -1) {
        MESS_print(mess_warn, "ZYRloop window: %s unable to connect\n", number);
        return;
    }
    state.queue = queue;
    state.conn_id = conn_id;
    exchange_values(def_table);
}

void RES_leave_window() {
    if (connected() && MQ_put(state.queue, state.conn_id, "quit") >= 0) {
        await_reply();
    }
    state.conn_id = missing;
}

void RES_show_window(const char* def, const char* value) {
    if (connected() && send_value(def, value != nullptr ? value : "")) {
        await_reply();
    }
}
