// system.cpp: what stands between the program and the operating system: the
// one exit, the move to the background, the timed sleep, and the prompts
// through which every question to a user goes. It owns the start time and
// the total of the sleeps; nothing must be called first.
#include "zyr.h"

#include "no_memory.h"
#include "run_end.h"
#include "text_num.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr std::size_t line_size = 81;      // a line of 80 characters
constexpr std::size_t menu_word_size = 20; // a word of 19
constexpr const char* blanks = " \t\v\f";
constexpr double micro = 1e6;

struct State {
    timeval start{};
    float slept = 0;       // seconds, since ZYR_init_time
    bool catching = false; // an end is that of a plot
};
State state;

struct EarlyEnd {
    int code;
};

using Line = std::array<char, line_size>;

// Reads one line into `line`, without its end; what does not fit is passed
// over, so that it cannot answer the next question.
void read_line(Line& line) {
    std::fflush(stdout);
    std::size_t used = 0;
    int c = std::getc(stdin);
    const bool ended = c == EOF;
    while (c != EOF && c != '\n') {
        if (used + 1 < line.size() && c != '\0') {
            line[used++] = static_cast<char>(c);
        }
        c = std::getc(stdin);
    }
    line[used] = '\0';
    if (ended) {
        MESS_print(mess_print, "\nEnd of input, leaving the program\n");
        ZYR_exit(0);
    }
    wstrim_string(line.data());
}

// Copies the first word of `line`, up to `size` - 1 characters of it. Returns
// whether there is one.
bool first_word(const char* line, char* word, std::size_t size) {
    line += std::strspn(line, blanks);
    const std::size_t length = std::min(std::strcspn(line, blanks), size - 1);
    std::memcpy(word, line, length);
    word[length] = '\0';
    return length > 0;
}

// Asks until a line comes that is no command and that `accept` can read.
template <typename Accept> void ask(const char* prompt, Accept accept) {
    Line line{};
    do {
        MESS_print(mess_print, "%s", prompt);
        read_line(line);
    } while (!accept(line.data()));
}

// Has the text a number in front?
bool read_float(const char* text, float& value) {
    double number = 0.0;
    if (!take_real(&text, &number) || !std::isfinite(number)) {
        return false;
    }
    constexpr double limit = std::numeric_limits<float>::max();
    value = static_cast<float>(std::clamp(number, -limit, limit));
    return true;
}

bool read_int(const char* text, int& value) {
    return take_int(&text, &value);
}

void list_resources() {
    constexpr unsigned list_level = 0x800;
    MESS_print(list_level, "Set resources\n");
    RES_list();
    MESS_print(list_level, "\n");
}

} // namespace

void ZYR_exit(int code) {
    if (state.catching) {
        throw EarlyEnd{code};
    }
    std::exit(code);
}

int ZYR_catch_exit(int (*plot)()) {
    int code = 0;
    state.catching = true;
    try {
        code = plot();
    } catch (const EarlyEnd& end) {
        code = end.code;
    }
    state.catching = false;
    return code;
}

int ZYR_back_proc() {
    std::fflush(nullptr); // or both processes would write what is still held
    const pid_t child = fork();
    if (child < 0) {
        return 0;
    }
    if (child > 0) {
        ZYR_exit(0);
    }
    std::signal(SIGINT, SIG_DFL);
    close(STDIN_FILENO);
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    const int null_device = open("/dev/null", O_RDWR); // takes the lowest number, 0
    if (null_device < 0) {
        return 0;
    }
    const int output = dup(null_device);
    const int errors = dup(null_device);
    setpgid(0, 0);
    return output >= 0 && errors >= 0 ? 1 : 0;
}

int ZYR_sleep(float seconds) {
    if (!(seconds > 0)) {
        return -1;
    }
    state.slept += seconds;
    constexpr double longest = 4000; // what usleep's argument holds
    usleep(static_cast<useconds_t>(std::min<double>(seconds, longest) * micro));
    return 0;
}

void ZYR_init_time() {
    gettimeofday(&state.start, nullptr);
    state.slept = 0;
}

float ZYR_elapse_time() {
    timeval now{};
    gettimeofday(&now, nullptr);
    if (now.tv_usec == 0) {
        return state.slept; // a clock without microseconds
    }
    return static_cast<float>(static_cast<double>(now.tv_sec - state.start.tv_sec) +
                              static_cast<double>(now.tv_usec - state.start.tv_usec) / micro);
}

char* ZYR_promptl(const char* prompt, char* buffer) {
    if (buffer == nullptr) {
        buffer = static_cast<char*>(ZYR_need(std::calloc(line_size, 1)));
    }
    ask(prompt, [&](const char* line) {
        return buffer == nullptr ||
               (first_word(line, buffer, menu_word_size) && ZYR_set_command(buffer) == 0);
    });
    return buffer;
}

char* ZYR_prompts(const char* prompt, char* buffer, int length) {
    const auto size = static_cast<std::size_t>(std::max(length, 2));
    if (buffer == nullptr) {
        buffer = static_cast<char*>(ZYR_need(std::calloc(size, 1)));
    }
    ask(prompt, [&](const char* line) {
        return buffer == nullptr || (ZYR_set_command(line) == 0 && first_word(line, buffer, size));
    });
    return buffer;
}

float ZYR_promptf(const char* prompt) {
    float value = 0;
    ask(prompt,
        [&](const char* line) { return ZYR_set_command(line) == 0 && read_float(line, value); });
    return value;
}

int ZYR_promptd(const char* prompt) {
    int value = 0;
    ask(prompt,
        [&](const char* line) { return ZYR_set_command(line) == 0 && read_int(line, value); });
    return value;
}

int ZYR_set_command(const char* text) {
    text += std::strspn(text, blanks);
    if (strnicmp(text, "exit", 4) == 0) {
        ZYR_exit(0);
    }
    if (strnicmp(text, "set", 3) != 0) {
        return 0;
    }
    const char* name = text + std::strcspn(text, blanks); // after the word that begins with "set"
    name += std::strspn(name, blanks);
    const std::size_t length = std::strcspn(name, "= ");
    if (length == 0) {
        list_resources();
        return 1;
    }
    const char* value = name + length;
    value += std::strspn(value, "= ");
    std::array<char, res_name_size> key{};
    if (length >= key.size()) {
        MESS_print(mess_warn, "ZYR_set_command: Resource name too long: %s\n", name);
        return 1;
    }
    std::memcpy(key.data(), name, length);
    RES_put(key.data(), *value != '\0' ? value : nullptr);
    return 1;
}
