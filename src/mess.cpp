// mess.cpp: the message channel. Every line that the program shows, logs or
// asks goes through MESS_print, which filters it by a mask of level groups and
// sends it to the screen, to a log, or to both. The module owns the level
// mask, the log and the paging; it works before anything else is set up.
#include "zyr.h"

#include "date.h"
#include "near_word.h"
#include "text_list.h"
#include "text_num.h"
#include "text_scan.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr int default_lines = 22;
constexpr std::size_t log_name_size = 80;

// Where output goes.
enum Out {
    out_stamped = -1, // log with a time stamp, and screen
    out_log = 0,      // log alone
    out_screen = 1,   // screen, and the log if one is open
    out_each = 2      // log opened and closed around each message, and screen
};

enum Page { page_never = 0, page_asked = 1, page_lines = 2 };

struct State {
    unsigned mess_level = 0xFFFFF; // groups that are printed: out2 and all below
    int mess_set = 0;              // explicit settings so far
    int mess_out = out_screen;
    int page = page_asked;
    int lines = 0; // counted since the last hold
    int max_lines = default_lines;
    std::FILE* pfile = nullptr;                 // open log
    std::array<char, log_name_size> filename{}; // log name of out_each
    bool warned = false;                        // that log was reported as not opening
    MESS_log_tools tools;
    void (*before)() = nullptr; // takes away what a message would be written into
};
State state;

struct Group {
    const char* keyword;
    unsigned mask;
};
constexpr Group groups[] = {
    {"none",  0         },
    {"print", mess_print},
    {"error", mess_error},
    {"warn",  mess_warn },
    {"mess",  mess_mess },
    {"out1",  0xF000    },
    {"out2",  0xF0000   },
    {"out3",  0xF00000  },
    {"out4",  0xF000000 },
    {"debug", mess_debug},
};

// Kinds of log by the word in front of its name; the longer words first.
struct LogWord {
    const char* word;
    const char* mode; // null: opened at each message
    int out;
};
constexpr LogWord log_words[] = {
    {"@fi", "a",     out_stamped},
    {"+fi", "a",     out_screen },
    {"-fi", "w",     out_screen },
    {"dfi", nullptr, out_each   },
    {"fi",  "a",     out_log    },
};

// The text after a keyword and its one separator character.
const char* value_behind(const char* text, const char* word) {
    text += std::strlen(word);
    return *text == '\0' ? text : text + 1;
}

// A mask with every bit below its highest one set as well.
unsigned fill_below(unsigned mask) {
    for (unsigned shift = 1; shift < 32; shift *= 2) {
        mask |= mask >> shift;
    }
    return mask;
}

const Group* find_group(const char* text) {
    const auto* row = std::find_if(std::begin(groups), std::end(groups),
                                   [&](const Group& group) { return begins(text, group.keyword); });
    return row != std::end(groups) ? row : nullptr;
}

// The words that set_item takes.
KnownWords message_words() {
    KnownWords words = {
        {"nopage"},
        {      "page"       },
        { "line",        true}
    };
    for (const Group& group : groups) {
        words.push_back({group.keyword, true});
    }
    for (const LogWord& log : log_words) {
        words.push_back({log.word, true});
    }
    return words;
}

// Mask of a keyword such as "warn" or "debugb"; 0 if nothing matches.
unsigned level_mask(const char* text) {
    const Group* row = find_group(text);
    if (row == nullptr) {
        return 0;
    }
    constexpr unsigned sub_levels[] = {0x11111111, 0x22222222, 0x44444444, 0x88888888};
    const int letter = std::tolower(static_cast<unsigned char>(text[std::strlen(text) - 1]));
    const bool narrowed = letter >= 'a' && letter <= 'd';
    return narrowed ? row->mask & sub_levels[letter - 'a'] : row->mask;
}

void set_level(const char* item) {
    const char sign = *item == '+' || *item == '-' ? *item : '\0';
    const char* word = sign != '\0' ? item + 1 : item;
    if (find_group(word) == nullptr) { // a slip of the finger silences nothing
        const std::string_view near = nearest_word(message_words(), word);
        MESS_print(mess_warn, "MESS_set_str: Unknown word: %s, the nearest is %.*s\n", item,
                   static_cast<int>(near.size()), near.data());
        return;
    }
    const unsigned mask = level_mask(word);
    if (sign == '+') {
        state.mess_level |= mask;
    } else if (sign == '-') {
        state.mess_level &= ~mask;
    } else {
        state.mess_level = fill_below(mask);
    }
}

// --- The log ---

void close_log() {
    if (state.pfile != nullptr) {
        state.tools.close(state.pfile);
    }
    state.pfile = nullptr;
}

// A log that does not open is dropped; the user is warned once, on the screen
// even where messages go to the log alone.
void open_log(const char* name, const char* mode) {
    state.pfile = state.tools.open(name, mode);
    if (state.pfile == nullptr && !state.warned && MESS_check(mess_warn) != 0) {
        std::fflush(stdout);
        std::fprintf(stderr, "MESS_set_str: Unable to open log file: %s\n", name);
        state.warned = true;
    }
}

// Returns whether the item names a log.
bool set_log(const char* item) {
    const auto* row = std::find_if(std::begin(log_words), std::end(log_words),
                                   [&](const LogWord& log) { return begins(item, log.word); });
    if (row == std::end(log_words)) {
        return false;
    }
    const char* name = value_behind(item, row->word);
    close_log();
    state.warned = false;
    state.mess_out = row->out;
    if (row->mode != nullptr) {
        open_log(name, row->mode);
    } else if (copy_text(state.filename.data(), state.filename.size(), name) != 0) {
        MESS_print(mess_warn, "MESS_set_str: Log file name cut to: %s\n", state.filename.data());
    }
    return true;
}

[[gnu::format(printf, 1, 0)]] void write_log(const char* format, std::va_list args) {
    if (state.mess_out == out_each) {
        open_log(state.filename.data(), "a");
    }
    if (state.pfile != nullptr) {
        if (state.mess_out == out_stamped && state.tools.stamp != nullptr) {
            std::array<char, date_label_size> now{};
            state.tools.stamp(now.data());
            std::fprintf(state.pfile, "%s -- ", now.data());
        }
        std::vfprintf(state.pfile, format, args);
    }
    if (state.mess_out == out_each) {
        close_log();
    }
}

void set_item(const char* item) {
    if (set_log(item)) {
        return;
    }
    if (stricmp(item, "nopage") == 0) {
        state.page = page_never;
    } else if (stricmp(item, "page") == 0) {
        state.page = page_lines;
    } else if (begins(item, "line")) {
        std::string_view text = value_behind(item, "line");
        int number = 0;
        take_plain(&text, &number);
        state.max_lines = number < 1 ? default_lines : number;
    } else {
        set_level(item);
    }
}

// A screenful ends with a pause. Newlines count as they are in the format.
void count_lines(unsigned level, const char* format) {
    state.lines += static_cast<int>(std::count(format, format + std::strlen(format), '\n'));
    if (state.lines > state.max_lines) {
        MESS_hold(level, "Press return to continue\n");
    }
}

} // namespace

int MESS_print(unsigned level, const char* format, ...) {
    if (MESS_check(level) == 0) {
        return 0;
    }
    std::va_list args;
    va_start(args, format);
    std::va_list log_args;
    va_copy(log_args, args);
    write_log(format, log_args);
    va_end(log_args);
    if (state.mess_out == out_log) {
        va_end(args);
        return 0;
    }
    if (state.before != nullptr) {
        state.before();
    }
    const bool trouble = (level & (mess_error | mess_warn)) != 0;
    if (trouble) {
        std::fflush(stdout); // keeps the order where both streams share a place
    }
    std::vfprintf(trouble ? stderr : stdout, format, args);
    va_end(args);
    if (state.page == page_lines) {
        count_lines(level, format);
    }
    return 1;
}

void MESS_set_log_tools(const MESS_log_tools& tools) {
    state.tools = tools;
}

void MESS_set_before(void (*before)()) {
    state.before = before;
}

int MESS_print_prog(const char* title) {
    return MESS_print(mess_mess, "      %s (Ver %s)\n\n", title, ZYR_version());
}

int MESS_set_str(const char* text) {
    const TextList items(text, ',');
    ++state.mess_set;
    for (const char* item : items) {
        set_item(item);
    }
    return 0;
}

int MESS_set(int mode, unsigned mask) {
    if (mode > 15 && state.mess_set != 0) {
        return 0;
    }
    if (mode < 5) {
        ++state.mess_set;
    }
    switch (mode) {
    case 0:
    case 10:
    case 20:
        state.mess_level = fill_below(mask);
        break;
    case 1:
    case 11:
    case 21:
        state.mess_level |= mask;
        break;
    case -1:
    case 9:
    case 19:
        state.mess_level &= ~mask;
        break;
    default:
        break;
    }
    return 0;
}

int MESS_check(unsigned level) {
    return (level & state.mess_level) != 0 ? 1 : 0;
}

int MESS_check_set() {
    return state.mess_set;
}

int MESS_set_page(int mode) {
    state.page = mode;
    return 0;
}

int MESS_hold(unsigned level, const char* text) {
    if (MESS_check(level) == 0 || state.mess_out == out_log || FLAG_batch() != 0 ||
        state.page == page_never) {
        return 0;
    }
    const bool trouble = (level & mess_error) != 0 && (level & mess_warn) != 0;
    std::fputs(text, trouble ? stderr : stdout);
    std::fflush(stdout);
    std::getc(stdin);
    state.lines = 0;
    return 1;
}
