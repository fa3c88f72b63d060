// res_window.cpp: the link to a running loop window, which holds settings of
// its own: both sides are brought to the same ones at the start, and options
// go to the window too. It owns the connection; the message queue is mqueue's.
#include "res_window.h"

#include "mqueue.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

struct State {
    int queue = missing;
    int conn_id = missing; // set: connected
};
State state;

bool connected() {
    return is_set(state.conn_id);
}

// Reads replies up to the one that ends an answer, passing over the others.
void await_reply() {
    std::array<char, mq_text_size> text{};
    while (MQ_get(state.queue, state.conn_id, text.data()) == 0) {
    }
}

// Returns whether an answer is on its way.
bool send_value(const char* def, const char* value) {
    return MQ_put(state.queue, state.conn_id, "set res %s %s", def, value) >= 0;
}

// Takes the answer to one query. Returns whether it brought a value.
bool take_value(int index, const RES_defobj& row) {
    std::array<char, mq_text_size> text{};
    bool arrived = false;
    while (MQ_get(state.queue, state.conn_id, text.data()) == 0) {
        if (text[0] == '\0' || text[0] == '!' || text[0] == '\n') {
            continue;
        }
        text[std::strlen(text.data()) - 1] = '\0'; // the line end
        RES_new(index, row.def, text.data(), row.cvt);
        arrived = true;
    }
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
    for (int i = 0; i < asked; ++i) {
        const RES_defobj& row = def_table[i];
        if (take_value(i, row)) {
            continue;
        }
        const char* held = RES_get(row.def);
        if (held != nullptr && send_value(row.def, held)) {
            ++pushed;
        }
    }
    for (; pushed > 0; --pushed) {
        await_reply();
    }
}

} // namespace

void RES_link_window(const char* number, const RES_defobj* def_table) {
    char* end = nullptr;
    const long value = std::strtol(number, &end, 10);
    constexpr long largest = std::numeric_limits<int>::max();
    const int queue =
        end == number ? -1 : MQ_open(static_cast<int>(std::clamp(value, -largest - 1, largest)));
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
