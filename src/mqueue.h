// mqueue.h: the link to a running loop window, a System V message queue. The
// client sends type 1, its connection number as a character ("0" added) and a
// command; it reads its own connection number as the type, a reply code
// as a digit and a text.
#pragma once

#include "zyr.h"

// Text of one queue message, its first (code) byte included.
constexpr std::size_t mq_text_size = 120;

// Sets the time-out handler and looks up queue `number`. Returns its id; -1 if
// there is none; 0 on any other failure. A queue of another user is a failure,
// with a warning: what it answers would be obeyed.
int MQ_open(int number);
// The handshake. Returns the connection number; -1 if it is refused.
int MQ_connect(int queue);
// Sends a command, waiting for room. Returns 0; -1 if it cannot be sent or is
// longer than a message.
[[gnu::format(printf, 3, 4)]] int MQ_put(int queue, int conn_id, const char* format, ...);
// Waits for a reply; `buffer` (mq_text_size) takes its text. Returns the
// reply code; negative, with an empty text, on a failure.
int MQ_get(int queue, int conn_id, char* buffer);
// An answer of several replies: from its begin to its end the time-out runs once,
// over all of them.
void MQ_begin_answer();
void MQ_end_answer();
// Drains all messages of that type without waiting.
int MQ_clear(int queue, int type);

// Arm and clear the time-out. When it runs out the handler is called from the
// waiting routine, never from the signal itself.
void MQ_enable_alarm();
void MQ_disable_alarm();
// What happens by default: a message and exit 7.
void MQ_intrp();
// Seconds to wait, 20 at the start; values below 1 count as 1.
void MQ_set_timeout(int seconds);
// A handler in place of MQ_intrp; null restores it.
void MQ_set_handler(void (*handler)());
