// Naming conventions and how files are named by them: the first three lines are a kind
// of input, what a user types as a name, and num_hour or after an "h" the hour; the
// rest is the file of conventions. The directory of the run has files of two dates and
// of none.
#include "files.h"
#include "name_find.h"
#include "run_program.h"
#include "state_keeper.h"
#include "zyrresrc.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

const TempDir& dir() {
    static const TempDir own;
    return own;
}

// What no input names: pipes, devices, directories and home directories.
void open_others() {
    require(FILE_ptr(FILE_open((dir().path() + "/.").c_str(), "r")) == nullptr);
    const FILE_ptr pipe(FILE_open("|echo one", "r"));
    require(std::fgetc(pipe.get()) == 'o');
    const FILE_ptr endless(FILE_open_text("/dev/zero"));
    long bytes = 0;
    while (std::fgetc(endless.get()) != EOF) {
        ++bytes;
    }
    require(bytes > 1000000 && bytes < 2000000 && FILE_close(nullptr) == -1);
    char path[file_name_size] = "";
    require(*FILE_add_user_path("~/x", path) == '/' && *FILE_add_user_path("~root", path) == '/');
}

// A directory that leads to itself.
void find_nowhere() {
    const std::string loop = dir().path() + "/loop";
    require(symlink("loop", loop.c_str()) == 0);
    NameSource source;
    source.conv = "%D/loop/%*";
    source.resource = [](const char*) { return dir().path().c_str(); };
    require(find_names(source, Date()).empty());
}

// What is asked at a terminal: a file by its convention, and what to do about an output.
void answer_questions() {
    const std::string answers =
        dir().write("answers", "list\nnone\n#20240229\nplain\nApp\nOver\nno\n");
    require(std::freopen(answers.c_str(), "r", stdin) != nullptr);
    require(FILE_open("-", "r") == stdin && FILE_close(stdin) == 0 && FILE_close(stdout) == 0);
    char name[file_name_size] = "";
    FILE_set_name("@%D/%*%Y%m%d_%h%n.nids");
    require(FILE_get_file("", name) == 1);
    FILE_set_name("@none*");
    FILE_list_file();
    const std::string there = dir().path() + "/plain";
    require(FILE_overwrite(there.c_str(), 2) == 2 && FILE_overwrite(there.c_str(), 1) == 1 &&
            FILE_overwrite(there.c_str(), 2) == 3 && FILE_overwrite(there.c_str(), 0) == 0);
}

const StateKeeper& first_state() {
    static const StateKeeper keeper = [] {
        MESS_set(0, 0);
        setenv("zyrcurtime", "202402291234", 1);
        for (const char* name : {"KTLX20240229_1200_N0R", "KTLX20240229_1206_N0R",
                                 "KTLX20240301_0000_N0R", "plain", "20240229_1200.nids"}) {
            dir().write(name, std::string(std::strlen(name), 'x'));
        }
        for (const char* path : {"file_path", "data_path", "con_path"}) {
            RES_put(path, dir().path().c_str());
        }
        StateKeeper first;
        keep_files(first);
        keep_file_sel(first);
        keep_flag(first);
        answer_questions();
        open_others();
        find_nowhere();
        FILE_keep_read();
        return first;
    }();
    return keeper;
}

// Only the directory of a path resource may be searched: "%D/". And "exit" leaves.
bool is_safe(const std::string& text) {
    for (std::size_t at = text.find('/'); at != std::string::npos; at = text.find('/', at + 1)) {
        if (at < 2 || text[at - 2] != '%' || std::strchr("CDF", text[at - 1]) == nullptr) {
            return false;
        }
    }
    std::string lower = text;
    low_string(lower.data());
    return lower.find('~') == std::string::npos && lower.find("exit") == std::string::npos;
}

void check_name(const char* name) {
    require(std::strlen(name) < file_name_size);
}

// Every name of a sequence, as far as somebody would look.
void walk(const Date& date) {
    char name[file_name_size] = "";
    FILE_first(&date);
    require((FILE_is_span() == 1) == (FILE_get_num_file() != 0) || FILE_is_span() == 0);
    for (int i = 0; i < 9 && FILE_get_next(name) == 1; ++i) {
        check_name(name);
    }
    FILE_set_nsecs(FILE_get_nsecs());
    FILE_next_file(name);
    FILE_prev_file(name);
    check_name(name);
}

void name_files(const char* typed) {
    char name[file_name_size] = "";
    Date date;
    for (const int type : {0, 1}) {
        FILE_set_type(type);
        FILE_set_file(typed, name);
        check_name(name);
        FILE_explain("-");
        FILE_explain((dir().path() + "/" + name).c_str()); // the directory at hand may be large
        require(std::strlen(FILE_get_ext_info()) < 40);
    }
    FILE_get_date(&date);
    FILE_put_date(&date);
    walk(date);
    FILE_set_date(nullptr, name);
    FILE_set_header_date(&date, name);
    check_name(name);
    FILE_set_current(typed, name);
    check_name(name);
    if (*RES_get("filename") != '\0' || FILE_exist(name) == 1) { // or it would be asked for
        RES_put_again("current", typed);
        FILE_get_file("", name);
        check_name(name);
    }
    const char* rest = FILE_request_rest(typed);
    require(rest >= typed && rest <= typed + std::strlen(typed));
}

// Paths, and the file of conventions read again from memory.
void use_files(const std::string& text, const std::string& conventions) {
    char path[file_name_size] = "";
    FILE_add_path_delim(FILE_add_path("a", text.c_str(), path));
    FILE_tell_nearest("conv_fuzz", dir().path().c_str(), text.c_str());
    require(FILE_overwrite(text.c_str(), 0) <= 3);
    FLAG_set_batch(1);
    require(FILE_overwrite((dir().path() + "/plain").c_str(), 1) == 3);
    FLAG_set_batch(0);
    const std::string made = dir().path() + "/new/deep/x";
    require(FILE_make_dir(made.c_str(), 1) >= 0 && FILE_size(made.c_str()) == -1);
    if (FILE_ptr out{FILE_open(made.c_str(), "w")}; out != nullptr) {
        FILE_note_new(out.get());
        require(FILE_is_input(made.c_str()) == 0);
    }
    require(FILE_delete(made.c_str()) == 0);
    for (const auto open : {FILE_open_text, FILE_open_bounded}) {
        const FILE_ptr file(open((dir().path() + "/name_conv").c_str()));
        std::array<char, 100> part{};
        std::size_t all = 0;
        std::size_t n = 0;
        do {
            n = std::fread(part.data(), 1, part.size(), file.get());
            all += n;
        } while (n != 0);
        require(all == conventions.size());
        std::fseek(file.get(), -1, SEEK_SET); // refused
        require(std::fseek(file.get(), 0, SEEK_SET) != 0 || std::ftell(file.get()) == 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const StateKeeper& first = first_state();
    std::istringstream input(std::string(data, data + size));
    std::string kind;
    std::string typed;
    std::string hours;
    std::getline(input, kind);
    std::getline(input, typed);
    std::getline(input, hours);
    std::string conventions;
    std::getline(input, conventions, '\0');
    if (!is_safe(kind + "\n" + typed + "\n" + conventions)) {
        return 0;
    }
    first.restore();
    dir().rewrite("name_conv", conventions);
    RES_put_again("name_conv", size % 7 == 0 ? "none" : "");
    RES_put_again("num_hour", hours.substr(0, 99).c_str());
    RES_put_again("filename", size % 2 == 0 ? "" : typed.substr(0, 199).c_str());
    if (FILE_set_name(kind.c_str()) == 1 && size % 3 == 0) {
        FILE_set_whole_name(kind.c_str());
    }
    FILE_set_min_size(static_cast<int>(size % 5));
    FILE_set_key('s', kind.c_str());
    FILE_set_file_key(typed.c_str());
    if (hours.starts_with('h')) {
        const Date fixed = RES_dec_hour(hours.c_str() + 1);
        FILE_set_time(&fixed);
    }
    name_files(typed.c_str());
    FILE_save_name_conv();
    FILE_set_name(nullptr);
    char name[file_name_size] = "";
    FILE_set_file(typed.c_str(), name);
    FILE_set_date(nullptr, name);
    FILE_restore_name_conv();
    FILE_set_late_off(FILE_get_late_off());
    use_files(typed, conventions);
    char buffer[file_name_size] = "";
    FILE_get_filename(buffer);
    FILE_get_key('s', buffer);
    return 0;
}
