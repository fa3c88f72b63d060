// file_sel.cpp: which files a run plots: typed names, dates, relative requests
// ("la", "-3", "#2010050112"), and the sequence of frames. Owns the sequence;
// the current convention and file name belong to files.cpp. FILE_set_name must
// have chosen a convention first.
#include "date.h"
#include "file_state.h"
#include "files.h"
#include "name_find.h"
#include "state_keeper.h"
#include "text_num.h"
#include "text_scan.h"
#include "tools.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

#include <sys/stat.h>

namespace {

constexpr int attempts = 4;        // at the file prompt
constexpr int latest_tries = 500;  // steps of "la"
constexpr int def_hours = 0;       // span when num_hour is not set
constexpr int most_steps = 200000; // of a span: twenty weeks of minutes
constexpr int longest_answer = 78;
constexpr long day_sec = 86400;
constexpr long hour_sec = 3600;
constexpr long minute_sec = 60;
constexpr unsigned trace_path = 0x40000000;

// The run of frames, from FILE_first on.
struct Run {
    char** files = nullptr; // names from the filename resource
    int numfile = 0;
    int file_ind = 0; // next of them
    Date first_date;
    int num_hour = 0;   // span, seconds; negative reaches back
    long skip = 0;      // wanted step
    long offset = 3600; // step used, a multiple of the template's
    long secs = 0;      // first frame from first_date
    long nsecs = 0;     // next frame from first_date
    bool told = false;  // that the span is too long
};
Run run_state;

int clamp_int(long value) {
    return static_cast<int>(std::clamp<long>(value, -INT_MAX, INT_MAX));
}

// Whether the name stands for a file of that very name, one that lies there.
bool is_file(const char* name) {
    return FILE_is_stdio(name) == 0 && FILE_exist(name) != 0 && FILE_is_dir(name) == 0;
}

// A relative request, unless it is plainly the name of a file.
bool is_request(const char* name) {
    const bool asks = begins_exactly(name, "la") || begins_exactly(name, "cu");
    return asks && !(std::strpbrk(name, "/.") != nullptr && is_file(name));
}

// Digits by position (year 4, month, day, hour, minute 2 each) to the first
// place that is none. Moves `*text` past them; returns how many fields it found.
int read_digits(const char** text, Date* date) {
    int* const fields[] = {&date->year, &date->month, &date->day, &date->hour, &date->min};
    int found = 0;
    for (int* field : fields) {
        const int width = found == 0 ? 4 : 2;
        if (!is_digit(**text) || scan_int(text, width, field) == 0) {
            break;
        }
        ++found;
    }
    return found;
}

NameSource source_of(const FileState& s) {
    NameSource source;
    source.conv = s.conv;
    source.keys = &s.keys;
    source.ext = s.ext;
    source.set = s.set;
    source.resource = RES_get;
    return source;
}

void take_result(FileState& s, const NameResult& result, const char* routine) {
    s.late_off = result.late_off;
    s.file_date = result.date;
    if (result.cut) {
        MESS_print(mess_warn, "%s: Name too long: %.40s...\n", routine, result.name);
    }
}

void fill_unknown(Date* date, const Date& known) {
    for (int Date::*const field :
         {&Date::year, &Date::month, &Date::day, &Date::hour, &Date::min}) {
        if (!is_set(date->*field)) {
            date->*field = known.*field;
        }
    }
}

void unknown_date(Date* date) {
    date->year = date->month = date->day = date->hour = date->min = missing;
}

bool same_file(const char* a, const char* b) {
    char path[file_name_size];
    struct stat first {};
    struct stat second {};
    return stat(FILE_add_user_path(a, path), &first) == 0 &&
           stat(FILE_add_user_path(b, path), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool is_fixed(const Date& set) {
    return is_set(set.year) || is_set(set.month) || is_set(set.day) || is_set(set.hour) ||
           is_set(set.min);
}

// Makes sure that a file is found again: the plotters build its name anew from
// the file date. If that leads elsewhere, the digits taken for a date are none,
// and the name itself is kept. A date that the user fixed goes before.
void check_date(FileState& s, const char* name) {
    if (!is_set(s.file_date.year) || is_fixed(s.set)) {
        return;
    }
    const FileState before = s;
    store_name("FILE_set_file", s.filename, name);
    s.filename_type = 1;
    char built[file_name_size];
    const bool none = FILE_set_date(&before.file_date, built) != 0;
    const bool again = !none && (same_file(built, name) || std::strcmp(built, name) == 0);
    s = before;
    if (!again) {
        unknown_date(&s.file_date);
    }
}

std::string_view without_path(std::string_view name) {
    return name.substr(name.rfind('/') + 1);
}

// The newest file that fits an open template on a date, as a built name; one of
// more than the least size comes first. Its own name begins with `begin`. None leaves
// the name with its "*".
void look_up(const FileState& s, const NameSource& source, const Date& date, std::string_view begin,
             NameResult* result) {
    const std::vector<FoundName> found = find_names(source, date);
    const FoundName* chosen = nullptr;
    for (const FoundName& one : found) {
        if (!without_path(one.name).starts_with(begin)) {
            continue;
        }
        const bool large = FILE_size(one.name.c_str()) > s.min_size;
        if (large || chosen == nullptr) {
            chosen = &one;
        }
        if (large) {
            break;
        }
    }
    if (chosen != nullptr) {
        result->cut = copy_text(result->name, sizeof result->name, chosen->name.c_str()) != 0;
        fill_unknown(&result->date, chosen->date);
    }
}

// Where the extra text of a typed name begins: at the first mark after its
// third letter, or after the file that a longer part of the name is. Null if
// all of it is a file or a command.
char* find_extra(char* name) {
    constexpr const char* marks = "#-+:";
    const char* plain = *name == '@' ? name + 1 : name;
    if (std::strlen(name) < 4 || *plain == '|' || is_file(plain)) {
        return nullptr;
    }
    char* const first = std::strpbrk(name + 3, marks);
    for (char* mark = first; mark != nullptr; mark = std::strpbrk(mark + 1, marks)) {
        if (is_file(std::string(plain, static_cast<const char*>(mark)).c_str())) {
            return mark;
        }
    }
    return first;
}

// Cuts the date or the extra text off a typed name, by the file type.
void cut_typed_name(FileState& s, char* name) {
    if (*name == '\0') {
        return;
    }
    if (s.file_type == 1) {
        s.ext_info[0] = '\0';
        if (char* mark = find_extra(name); mark != nullptr) {
            copy_text(s.ext_info, sizeof s.ext_info, mark);
            *mark = '\0';
        }
        return;
    }
    char* mark = is_request(name) || is_file(name) ? nullptr : std::strchr(name + 1, '#');
    if (mark != nullptr) {
        const char* digits = mark + 1;
        read_digits(&digits, &s.set);
        *mark = '\0';
    }
}

// --- Relative requests ----------------------------------------------------------

// The date moved so that its clock values are those of `set`, the last such
// time that has passed.
std::time_t apply_set(const Date& set, std::time_t seconds) {
    Date date;
    const auto to_seconds = [&date, &seconds] { seconds = DATE_num_sec(&date); };
    DATE_get_gmdate(&seconds, &date);
    if (set.month >= 0) {
        date.year -= set.month > date.month ? 1 : 0;
        date.month = set.month;
        to_seconds();
    }
    if (set.day >= 0) {
        if (set.day > date.day) {
            date.year -= date.month == 1 ? 1 : 0;
            date.month = date.month == 1 ? 12 : date.month - 1;
        }
        date.day = set.day;
        to_seconds();
    }
    if (set.hour >= 0) {
        if (set.hour > date.hour) {
            seconds -= day_sec;
            Date before;
            DATE_get_gmdate(&seconds, &before);
            date.year = before.year;
            date.month = before.month;
            date.day = before.day;
        }
        date.hour = set.hour;
        to_seconds();
    }
    if (set.min >= 0) {
        if (set.min > date.min) {
            seconds -= hour_sec;
            Date before;
            DATE_get_gmdate(&seconds, &before);
            before.min = date.min;
            before.sec = date.sec;
            date = before;
        }
        date.min = set.min;
        to_seconds();
    }
    return seconds;
}

// Digits of a request or of the clock's stand-in as a time; nothing read gives
// the system time.
std::time_t base_time(const char** text) {
    Date date = {.year = 0, .month = 0, .day = 0, .hour = 0, .min = 0, .sec = 0};
    const char* at = *text;
    bool given = *at == '#';
    if (!given) {
        at = std::getenv("zyrcurtime");
        given = at != nullptr;
        text = &at;
    }
    if (given) {
        *text += **text == '#' ? 1 : 0;
        if (read_digits(text, &date) > 0) {
            return DATE_num_sec(&date);
        }
    }
    return DATE_get_time(nullptr);
}

void trace_time(const char* label, std::time_t seconds) {
    Date date;
    DATE_get_gmdate(&seconds, &date);
    MESS_print(mess_debug, "%s%d %d %d %d\n", label, date.year, date.month, date.day, date.hour);
}

// A relative request being read. `text` moves past what was read.
struct Request {
    const char* text;
    std::time_t seconds;
    int direction = -1; // of the next offset or search

    // A sign is "+" forward; "-" or none is backward.
    void read_sign() {
        direction = *text == '+' ? 1 : -1;
        text += *text == '+' || *text == '-' ? 1 : 0;
    }

    // An offset in days, hours and minutes: "[Nd]H[:M]". Returns whether one stood there.
    bool read_offset() {
        if (!is_digit(*text)) {
            return false;
        }
        int days = 0;
        int hours = 0;
        int minutes = 0;
        const char* at = text;
        if (scan_int(&at, any_width, &days) != 0 && *at == 'd') {
            text = at + 1;
        } else {
            days = 0;
        }
        if (scan_int(&text, any_width, &hours) != 0 && *text == ':') {
            at = text + 1;
            text = scan_int(&at, any_width, &minutes) != 0 ? at : text;
        }
        seconds += direction * (days * day_sec + hours * hour_sec + minutes * minute_sec);
        return true;
    }

    // How many names "la[#tries]" may try; 0 if it is not there.
    int read_latest(bool* given) {
        *given = false;
        if (*text != 'l') {
            return 0;
        }
        ++text;
        text += *text == 'a' ? 1 : 0;
        int limit = latest_tries;
        if (*text == '#') {
            *given = true;
            ++text;
            scan_int(&text, 4, &limit);
        }
        return std::max(limit, 1);
    }
};

std::string name_at(std::time_t seconds) {
    char name[file_name_size];
    Date date;
    DATE_get_gmdate(&seconds, &date);
    FILE_set_date(&date, name);
    return name;
}

bool is_large(const std::string& name) {
    const FileState& s = file_state();
    const long size = FILE_size(name.c_str());
    MESS_print(mess_debug, "LATE: %s\n", name.c_str());
    const bool large = (s.rmin_size > 0 && size > s.rmin_size) || size > s.min_size;
    if (large) {
        MESS_print(mess_debug, "LATEST: %s %s %d\n", s.conv, name.c_str(), clamp_int(size));
    }
    return large;
}

// The same for an open template: the times are those of the files that there are,
// so that the newest one is found however old it is. Without one the start is kept.
std::time_t find_latest_file(std::time_t seconds, int direction, long limit) {
    name_at(seconds); // for the step
    const FileState& s = file_state();
    const long step = FILE_get_offset();
    const std::time_t start = seconds - seconds % step;
    NameSource source = source_of(s);
    source.set = {};
    std::vector<std::time_t> times;
    for (const FoundName& found : find_names(source, {})) {
        Date date = found.date;
        fill_unknown(&date, {.month = 1, .day = 1, .hour = 0, .min = 0});
        const std::time_t time = is_set(date.year) ? DATE_num_sec(&date) : start;
        const long steps = direction * (time - start) / step;
        if (steps >= 0 && steps < limit && (times.empty() || times.back() != time)) {
            times.push_back(time);
        }
    }
    if (direction > 0) { // they come from the newest down
        std::reverse(times.begin(), times.end());
    }
    times.resize(std::min<std::size_t>(times.size(), latest_tries));
    for (const std::time_t time : times) {
        if (is_large(name_at(time))) {
            return time;
        }
    }
    return start;
}

// Steps through the times until a file is large enough; the last time tried is kept.
std::time_t find_latest(std::time_t seconds, int direction, int limit) {
    for (int i = 0; i < limit; ++i) {
        if (is_large(name_at(seconds))) {
            break;
        }
        if (i + 1 < limit) {
            seconds += static_cast<long>(direction) * FILE_get_offset();
        }
    }
    return seconds;
}

// --- The first file ---------------------------------------------------------------

void settle_current(const char* request, char* outfile) {
    FileState& s = file_state();
    FILE_set_current(request, s.filename);
    if (outfile != nullptr) {
        copy_text(outfile, file_name_size, s.filename);
    }
    if (FILE_exist(s.filename) == 0) {
        MESS_print(mess_warn, "File not found: %s\n", s.filename);
        ZYR_exit(end_file);
    }
    MESS_print(mess_mess, "Current filename: %s\n", s.filename);
}

// Takes one answer of the file prompt.
void take_answer(const char* answer) {
    FileState& s = file_state();
    s.filename_type = 1;
    if (!FILE_is_request(answer)) {
        FILE_set_file(answer, s.filename);
        return;
    }
    FILE_set_current(begins_exactly(answer, "cu") ? answer + 2 : answer, s.filename);
    MESS_print(mess_mess, "Current filename: %s\n", s.filename);
}

// Asks until a file is found or the attempts are used up. A list counts as none.
int ask_file(const char* prompt, char* outfile) {
    FileState& s = file_state();
    MESS_print(mess_print, "List of available files:\n");
    FILE_list_file();
    MESS_print(mess_print, "\n");
    for (int i = 0; i < attempts;) {
        char answer[longest_answer + 1];
        ZYR_prompts(prompt, answer, sizeof answer);
        if (std::strcmp(answer, "list") == 0) {
            FILE_list_file();
            continue;
        }
        ++i;
        take_answer(answer);
        if (outfile != nullptr) {
            copy_text(outfile, file_name_size, s.filename);
        }
        if (FILE_exist(s.filename) != 0) {
            return 1;
        }
        MESS_print(mess_warn, "File not found: %s\n", s.filename);
        FILE_explain(s.filename);
    }
    ZYR_exit(end_file);
}

// How an output of that name is asked for; null if it is not one by its ending.
const char* way_of_output(const char* name) {
    struct Way {
        const char* end;
        const char* way;
    };
    constexpr Way ways[] = {
        {".ps",   "-de p,FILE"            },
        {".eps",  "-de p,FILE,eps"        },
        {".pdf",  "-de 'p,|ps2pdf - FILE'"},
        {".hpgl", "-de h,FILE"            },
        {".cgm",  "-de m,FILE,cgm"        },
        {".meta", "-de m,FILE"            },
        {".png",  "-of png=FILE"          },
        {".gif",  "-of gif=FILE"          },
    };
    const char* end = std::strrchr(name, '.');
    const auto* row = std::find_if(std::begin(ways), std::end(ways), [end](const Way& one) {
        return end != nullptr && stricmp(end, one.end) == 0;
    });
    return row != std::end(ways) ? row->way : nullptr;
}

// Hours and minutes of "hours:minutes" in seconds; the minutes take the sign.
int span_of(const char* text) {
    int hours = 0;
    int minutes = 0;
    const bool negative = *text == '-';
    const bool has_hours = scan_int(&text, any_width, &hours) != 0;
    if (!has_hours && text[0] == '-' && text[1] == ':') {
        ++text;
    }
    if (*text == ':') {
        ++text;
        scan_int(&text, any_width, &minutes);
    }
    const long sign = hours < 0 || (hours == 0 && negative) ? -1 : 1;
    return clamp_int(hours * hour_sec + sign * minutes * minute_sec);
}

// FILE_set_date, of names that begin with `begin` where the template is open.
int set_date(const Date* date, std::string_view begin, char* out_file) {
    FileState& s = file_state();
    if (*s.conv == '\0') {
        const std::string name = *s.filename == '\0' ? "filename" : s.filename;
        copy_text(out_file, file_name_size, name.c_str());
        s.filename_type = 1;
        return 1;
    }
    if (FILE_is_stdio(s.conv) != 0) {
        copy_text(out_file, file_name_size, "-");
        s.filename_type = 0;
        return 1;
    }
    std::string path;
    if (s.filename_type == 1 && FILE_fullpath(s.filename) != 0) {
        path = path_of_name(s.conv, s.filename);
        if (!path.empty()) {
            MESS_print(trace_path, "Extracted path: %s\n", path.c_str());
        }
    }
    s.late_off = missing;
    const Date wanted = date == nullptr ? s.file_date : *date;
    if (date != nullptr) {
        unknown_date(&s.file_date);
    }
    if (!is_set(wanted.year) && *s.filename != '\0') {
        copy_text(out_file, file_name_size, s.filename);
        s.filename_type = 1;
        return 1;
    }
    NameSource source = source_of(s);
    source.path = path.c_str();
    NameResult result = build_name(source, wanted, s.file_date);
    if (name_is_open(s.conv)) {
        look_up(s, source, wanted, begin, &result);
    }
    take_result(s, result, "FILE_set_date");
    copy_text(s.filename, sizeof s.filename, result.name);
    copy_text(out_file, file_name_size, result.name);
    return 0;
}

} // namespace

int FILE_get_file(const char* prompt, char* outfile) {
    FileState& s = file_state();
    if (const TextList names = RES_items("filename"); names.count() > 0) {
        const std::string first = names[0];
        if (first == "list") {
            FILE_list_file();
            ZYR_exit(0);
        }
        s.filename_type = 1;
        FILE_set_file(first.c_str(), s.filename);
        if (outfile != nullptr) {
            copy_text(outfile, file_name_size, s.filename);
        }
        return FILE_exist(s.filename);
    }
    const char* current = RES_get("current");
    if (current != nullptr || FLAG_batch() != 0) {
        settle_current(current == nullptr ? "la" : current, outfile);
        return 1;
    }
    return ask_file(prompt, outfile);
}

void FILE_set_type(int type) {
    file_state().file_type = type;
}

const char* FILE_get_ext_info() {
    return file_state().ext_info;
}

void FILE_explain(const char* name) {
    const FileState& s = file_state();
    if (FILE_is_stdio(name) != 0 || *name == '|') {
        return;
    }
    const bool there = FILE_exist(name) != 0; // but it cannot be read
    if (!there && *s.ext_info != '\0') {
        MESS_print(mess_warn, "FILE_set_file: No file has the whole name, \"%s\" was taken off\n",
                   s.ext_info);
    } else if (const char* way = there ? nullptr : way_of_output(name)) {
        MESS_print(mess_warn,
                   "FILE_set_file: A name alone is an input, this output is named by %s\n", way);
    } else {
        FILE_tell_nearest("FILE_set_file", nullptr, name);
    }
}

int FILE_set_file(const char* file, char* out_file) {
    FileState& s = file_state();
    char name[file_name_size];
    store_name("FILE_set_file", name, file);
    cut_typed_name(s, name);
    s.file_date = s.set;
    if (stricmp(name, "exit") == 0) {
        ZYR_exit(0);
    }
    if (*name == '|' && is_file(name)) { // a name as any other, met by a shell's "*"
        s.filename_type = 1;
        std::snprintf(out_file, file_name_size, "./%.*s", static_cast<int>(file_name_size) - 3,
                      name);
        return 0;
    }
    if (*name == '@' || *name == '|') { // as it stands; a command is read
        s.filename_type = 1;
        copy_text(out_file, file_name_size, *name == '@' ? name + 1 : name);
        return 0;
    }
    if (FILE_is_stdio(name) != 0 || (*s.conv != '\0' && FILE_is_stdio(s.conv) != 0)) {
        copy_text(out_file, file_name_size, "-");
        return 0;
    }
    if (*s.conv == '\0') {
        FILE_set_filename(name);
        copy_text(out_file, file_name_size, name);
        return 0;
    }
    if (FILE_is_request(name)) {
        FILE_set_current(begins_exactly(name, "cu") ? name + 2 : name, out_file);
        MESS_print(mess_mess, "Current filename: %s\n", out_file);
        return 0;
    }
    if (stricmp(name, "none") == 0 || (FILE_fullpath(s.conv) != 0 && FILE_fullpath(name) != 0)) {
        copy_text(out_file, file_name_size, name);
        return 0;
    }
    const NameResult result = match_name(source_of(s), name);
    take_result(s, result, "FILE_set_file");
    copy_text(s.ext, sizeof s.ext, result.ext);
    DATE_print(mess_debug, &s.file_date);
    // In suffix mode a file of the typed name comes first, else only where the
    // template leads to none.
    const bool typed = is_file(name) && (s.file_type == 1 || FILE_exist(result.name) == 0);
    const char* chosen = typed ? name : result.name;
    if (!typed && name_is_open(s.conv) && is_set(s.file_date.year) && !is_file(chosen)) {
        const Date date = s.file_date;
        store_name("FILE_set_file", s.filename, chosen); // its path is kept
        s.filename_type = 1;
        // Text in front of the date belongs to the name: another radar's file, or that
        // of another second, is not the one that was typed.
        const std::string_view begin = without_path(name);
        const bool any = begin.empty() || is_digit(begin.front());
        set_date(&date, any ? "" : begin, out_file);
        if (any) {
            return 0;
        }
        if (is_file(out_file)) {
            check_date(s, out_file);
        } else {
            const bool open = std::strchr(chosen, '*') != nullptr;
            copy_text(out_file, file_name_size, open ? name : chosen);
            unknown_date(&s.file_date);
        }
        store_name("FILE_set_file", s.filename, out_file);
        s.filename_type = 1;
        return 0;
    }
    if (is_file(chosen) || *s.ext_info != '\0') { // one that was cut is reported once
        check_date(s, chosen);
    }
    if (typed || !is_set(s.file_date.year)) {
        store_name("FILE_set_file", s.filename, chosen);
        s.filename_type = 1;
    }
    copy_text(out_file, file_name_size, chosen);
    return 0;
}

int FILE_set_date(const Date* date, char* out_file) {
    return set_date(date, "", out_file);
}

int FILE_set_header_date(const Date* date, char* out_file) {
    FileState& s = file_state();
    if (*s.hconv == '\0') {
        *out_file = '\0';
        return -1;
    }
    const std::string conv = s.conv;
    copy_text(s.conv, sizeof s.conv, s.hconv);
    const int result = FILE_set_date(date, out_file);
    copy_text(s.conv, sizeof s.conv, conv.c_str());
    return result;
}

long FILE_set_current(const char* request, char* filename) {
    file_state().filename_type = 0;
    const std::string words = request == nullptr ? "la" : request; // may be `filename` itself
    const char* text = words.c_str();
    std::time_t base = base_time(&text);
    trace_time("CUR1:", base);
    base = apply_set(file_state().set, base);
    MESS_print(mess_debug, "CUR1:%s %d\n", text, clamp_int(base));
    Request at = {text, base};
    at.read_sign();
    if (at.read_offset()) {
        at.read_sign();
    }
    bool limited = false;
    const int limit = at.read_latest(&limited);
    if (limit > 0) {
        Date date;
        DATE_get_gmdate(&at.seconds, &date);
        MESS_print(mess_debug, "LATE:%d %d %d %d %d\n", date.month, date.day, date.hour, date.min,
                   limit);
        at.seconds = name_is_open(file_state().conv)
                         ? find_latest_file(at.seconds, at.direction, limited ? limit : LONG_MAX)
                         : find_latest(at.seconds, at.direction, limit);
        at.read_sign();
    }
    trace_time("CUR2:", at.seconds);
    at.read_offset();
    MESS_print(mess_debug, "CUR2:%d\n", clamp_int(at.seconds));
    trace_time("", at.seconds);
    copy_text(filename, file_name_size, name_at(at.seconds).c_str());
    const long step = FILE_get_late_off();
    return step < 1 ? at.seconds : at.seconds - at.seconds % step;
}

const char* FILE_request_rest(const char* request) {
    Date date;
    const char* text = request;
    if (*text == '#') {
        ++text;
        read_digits(&text, &date);
    }
    Request at = {text, 0};
    at.read_sign();
    if (at.read_offset()) {
        at.read_sign();
    }
    bool limited = false;
    if (at.read_latest(&limited) > 0) {
        at.read_sign();
    }
    at.read_offset();
    return at.text;
}

bool FILE_is_request(const char* name) {
    return *name == '#' || is_request(name);
}

int FILE_set_date_off(const Date* date, int offset, char* out_file) {
    Date from = *date;
    const std::time_t seconds = DATE_num_sec(&from) + offset;
    Date to;
    DATE_get_gmdate(&seconds, &to);
    MESS_print(mess_debug, "%d %d = %d %d %d %d\n", from.hour, offset, to.year, to.month, to.day,
               to.hour);
    FILE_set_date(&to, out_file);
    return offset / FILE_get_offset();
}

void FILE_list_file() {
    const std::string command = "ls -x " + list_pattern(source_of(file_state()));
    MESS_print(mess_debug, "SEARCH: %s\n", command.c_str());
    std::fflush(nullptr);
    const int status = std::system((command + " 2>/dev/null").c_str());
    if (status == -1) {
        MESS_print(mess_warn, "FILE_list_file: Unable to list files\n");
    } else if (status != 0) {
        MESS_print(mess_warn, "FILE_list_file: No file fits %s\n", file_state().conv);
    }
}

// --- Sequence of files -----------------------------------------------------------

int FILE_num_hour() {
    const char* text = RES_get("num_hour");
    return text == nullptr ? def_hours : span_of(text);
}

int FILE_get_skip() {
    const char* text = RES_get("num_hour");
    const char* step = text == nullptr ? nullptr : std::strchr(text, ',');
    if (step == nullptr) {
        return FILE_get_late_off();
    }
    ++step;
    return *step == ':' ? 0 : std::max(span_of(step), 1);
}

void FILE_first(const Date* date) {
    Run& run = run_state;
    free_parsed_array(run.numfile, run.files);
    const bool told = run.told;
    run = {};
    run.told = told;
    RES_getvals("filename", &run.numfile, &run.files);
    if (run.numfile > 0 && is_request(run.files[0])) {
        free_parsed_array(run.numfile, run.files);
        run.files = nullptr;
        run.numfile = 0;
    }
    run.first_date = *date;
    run.num_hour = FILE_num_hour();
    if (run.numfile == 1 && !is_set(file_state().file_date.year)) {
        run.num_hour = 0; // a file without a date in its name is all of the run
    }
    run.skip = FILE_get_skip();
    run.offset = FILE_get_offset();
    if (run.skip > 0 && run.skip / run.offset > 0) {
        run.offset *= run.skip / run.offset;
    }
    const long most = most_steps * run.offset;
    if (std::abs(static_cast<long>(run.num_hour)) > most) {
        if (!run.told) {
            MESS_print(mess_warn, "num_hour: Too many steps, the nearest %d are taken\n",
                       most_steps);
        }
        run.told = true;
        run.num_hour = clamp_int(run.num_hour < 0 ? -most : most);
    }
    if (run.num_hour < 0) {
        run.secs = run.offset * ((run.num_hour - run.offset + 1) / run.offset);
    }
    run.nsecs = run.secs;
}

int FILE_get_next(char* file) {
    Run& run = run_state;
    const bool span_of_one = run.numfile == 1 && run.num_hour != 0;
    if (run.numfile > 0 && !span_of_one) {
        if (run.file_ind >= run.numfile) {
            return 0;
        }
        FILE_set_file(run.files[run.file_ind++], file);
        return 1;
    }
    if (run.num_hour < 0 ? run.nsecs > 0 : run.nsecs > run.num_hour) {
        return 0;
    }
    if (run.num_hour == 0) {
        copy_text(file, file_name_size, file_state().filename);
    } else {
        FILE_set_date_off(&run.first_date, clamp_int(run.nsecs), file);
    }
    run.nsecs += run.offset;
    return 1;
}

int FILE_is_span() {
    return run_state.numfile <= 1 && run_state.num_hour != 0 ? 1 : 0;
}

int FILE_get_num_file() {
    const Run& run = run_state;
    if (run.numfile == 1 && run.num_hour != 0) {
        return run.num_hour;
    }
    return run.numfile > 0 ? run.numfile - 1 : run.num_hour;
}

int FILE_next_file(char* file) {
    Run& run = run_state;
    run.secs = clamp_int(run.secs + run.offset);
    FILE_set_date_off(&run.first_date, clamp_int(run.secs), file);
    return 1;
}

int FILE_prev_file(char* file) {
    Run& run = run_state;
    run.secs = clamp_int(run.secs - run.offset);
    FILE_set_date_off(&run.first_date, clamp_int(run.secs), file);
    return 1;
}

int FILE_get_nsecs() {
    return clamp_int(run_state.nsecs);
}

void FILE_set_nsecs(int seconds) {
    run_state.nsecs = seconds;
}

void keep_file_sel(StateKeeper& keeper) {
    keeper.close_by([] {
        free_parsed_array(run_state.numfile, run_state.files);
        run_state = {};
    });
}
