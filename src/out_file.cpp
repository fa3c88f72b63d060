// out_file.cpp: the outputs of the program. Owns the open ones: their buffers,
// which have to outlive the files (an early exit leaves the last of them to the
// library to flush), and the names of files that are not whole yet. From the
// first one on it owns the signals that stop a program, too: they take the
// unfinished files away.

#include "out_file.h"

#include "text_num.h"
#include "zyr.h"

#include "date.h"
#include "files.h"
#include "no_memory.h"
#include "text_list.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <unordered_map>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Output {
    std::FILE* file = nullptr;
    bool given_up = false;
    std::array<char, file_name_size> name{}; // as it was asked for
    std::array<char, PATH_MAX> target{};     // the name to take
    std::array<char, PATH_MAX> unfinished{}; // the file beside it
    volatile std::sig_atomic_t pending = 0;  // `unfinished` lies there
    std::array<char, std::size_t{1} << 16> buffer{};
};

constinit std::array<Output, 4> outputs; // costs the start of the program nothing

struct Module {
    bool guarded = false; // by the signals and at exit
    std::string fault;    // the output that failed last and why; empty if that was said
    pid_t owner = 0;      // a process that was split off removes nothing
    // Names taken in a run of many pictures, by their hashes, and by which picture.
    std::unordered_map<std::size_t, long> claims;
    long picture = 0; // 0: names are not watched over
};
Module module;

// --- Unfinished files ---------------------------------------------------------

// These two are safe inside a signal handler.
void remove_unfinished_of(Output& output) {
    if (output.pending != 0) {
        unlink(output.unfinished.data());
        output.pending = 0;
    }
}

void remove_unfinished() {
    if (module.owner != getpid()) {
        return;
    }
    for (Output& output : outputs) {
        remove_unfinished_of(output);
    }
}

// Ends the program as the signal does by default, once the handler returns.
extern "C" void stop_handler(int signal) {
    remove_unfinished();
    std::raise(signal);
}

extern "C" void no_handler(int) {}

// SIGUSR1 and SIGUSR2 come from batch queues whose time runs out.
constexpr std::array stopping = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU, SIGUSR1, SIGUSR2};
// A command that ends early, or a limit on the size of files, is an error of
// writing and must not take the program with it. Unlike SIG_IGN a handler is
// not handed on to commands.
constexpr std::array harmless = {SIGPIPE, SIGXFSZ};

void handle(int signal, void (*handler)(int), int flags) {
    struct sigaction now {};
    if (sigaction(signal, nullptr, &now) != 0 || now.sa_handler != SIG_DFL) {
        return; // as the user wants it
    }
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

void guard() {
    module.owner = getpid();
    for (const int signal : harmless) {
        handle(signal, no_handler, SA_RESTART);
    }
    for (const int signal : stopping) {
        handle(signal, stop_handler, static_cast<int>(SA_RESETHAND));
    }
    if (!module.guarded) {
        module.guarded = true;
        ZYR_clear_at_no_memory(remove_unfinished);
        static_cast<void>(std::atexit(remove_unfinished)); // else they stay at an early exit
    }
}

// Keeps the signals that stop a program waiting while a file and the note of it
// do not agree.
class HeldSignals {
public:
    HeldSignals() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : stopping) {
            sigaddset(&held, signal);
        }
        sigprocmask(SIG_BLOCK, &held, &before_);
    }
    ~HeldSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

private:
    sigset_t before_{};
};

// Of the file that is replaced, else as any new file.
mode_t mode_of(const struct stat* old) {
    if (old != nullptr) {
        return old->st_mode & 07777;
    }
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Opens the file beside `output.target`; null, with the cause in errno.
std::FILE* open_beside(Output& output, const struct stat* old) {
    const std::string target = output.target.data();
    const std::size_t slash = target.rfind('/');
    const std::string path =
        (slash == std::string::npos ? "" : target.substr(0, slash + 1)) + ".zyr-XXXXXX";
    if (copy_text(output.unfinished.data(), output.unfinished.size(), path.c_str()) != 0) {
        errno = ENAMETOOLONG;
        return nullptr;
    }
    const HeldSignals held;
    const int fd = mkostemp(output.unfinished.data(), O_CLOEXEC);
    if (fd < 0) {
        return nullptr;
    }
    output.pending = 1;
    fchmod(fd, mode_of(old)); // some file systems know no modes
    std::FILE* const file = fdopen(fd, "w");
    if (file != nullptr) {
        FILE_note_new(file);
    }
    return file;
}

void note_fault(const char* name, const char* why) {
    module.fault = std::string(name) + ": " + why;
}

const char* reason(int error) {
    return error != 0 ? std::strerror(error) : "it was not written whole";
}

// Lets the whole file take its name.
bool take_name(Output& output) {
    if (FILE_is_input(output.target.data()) != 0) {
        MESS_print(mess_error, "close_output: The output is an input of the run: %s\n",
                   output.target.data());
        return false;
    }
    const HeldSignals held;
    if (std::rename(output.unfinished.data(), output.target.data()) != 0) {
        note_fault(output.name.data(), std::strerror(errno));
        return false;
    }
    output.pending = 0;
    return true;
}

// --- Opening ------------------------------------------------------------------

// Is a file one that the run reads, or is going to by a typed name?
bool is_input(const char* path) {
    struct stat file {};
    struct stat typed {};
    if (stat(path, &file) != 0 || !S_ISREG(file.st_mode)) {
        return false;
    }
    bool found = FILE_is_input(path) != 0;
    const TextList names = RES_items("filename");
    for (int i = 0; i < names.count() && !found; ++i) {
        std::array<char, file_name_size> name{};
        found = stat(FILE_add_user_path(names[i], name.data()), &typed) == 0 &&
                typed.st_dev == file.st_dev && typed.st_ino == file.st_ino;
    }
    if (found) {
        MESS_print(mess_error, "open_output: The output is an input of the run: %s\n", path);
        errno = 0;
    }
    return found;
}

// Opens a plain file; anything else is left to FILE_open.
std::FILE* open_plain(Output& output, const char* name) {
    struct stat info {};
    const bool exists = stat(name, &info) == 0;
    if (exists && !S_ISREG(info.st_mode)) {
        return FILE_open(name, "w");
    }
    if (exists && access(name, W_OK) != 0) {
        return nullptr;
    }
    // A link stays one: the file that it leads to is replaced.
    if (!exists || realpath(name, output.target.data()) == nullptr) {
        copy_text(output.target.data(), output.target.size(), name);
        FILE_make_dir(name, 1);
    }
    // The page and a text grid of one name: the second to be whole would take it.
    for (const Output& other : outputs) {
        if (other.pending != 0 && std::strcmp(other.target.data(), output.target.data()) == 0) {
            MESS_print(mess_error, "open_output: Another output has this name: %s\n", name);
            errno = 0;
            return nullptr;
        }
    }
    std::FILE* const file = open_beside(output, exists ? &info : nullptr);
    const bool locked = file == nullptr && exists && (errno == EACCES || errno == EPERM);
    return locked ? FILE_open(name, "w") : file; // a file may be ours where its directory is not
}

// Standard output under a descriptor of its own: a run that goes on in the
// background closes the program's.
std::FILE* own_stdout() {
    std::fflush(stdout);
    const int fd = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    return fd < 0 ? nullptr : fdopen(fd, "w");
}

std::FILE* open_any(Output& output, const char* name, bool append) {
    if (FILE_is_stdio(name) != 0) {
        return own_stdout();
    }
    if (*name == '|') {
        return FILE_open(name, "w");
    }
    std::array<char, file_name_size> path{};
    const std::string_view full = FILE_add_user_path(name, path.data());
    if (full.starts_with("/dev/") || full.starts_with("/proc/")) {
        return FILE_open(path.data(), append ? "a" : "w"); // an open file of somebody
    }
    if (is_input(path.data()) || !claim_output(path.data())) {
        return nullptr;
    }
    return append ? FILE_open(path.data(), "a") : open_plain(output, path.data());
}

Output* slot_of(const std::FILE* file) {
    auto* const found = std::find_if(outputs.begin(), outputs.end(),
                                     [file](const Output& output) { return output.file == file; });
    return found != outputs.end() ? found : nullptr;
}

void store(char* name, std::size_t size, const char* text) {
    if (copy_text(name, size, text) != 0) {
        MESS_print(mess_warn, "Name of the output file cut to: %s\n", name);
    }
}

} // namespace

void output_name(const char* conn_id, std::initializer_list<const char*> environment,
                 const char* otherwise, char* name, std::size_t size) {
    std::string_view field = conn_id != nullptr ? conn_id : "";
    field = field.substr(0, field.find(','));
    if (!field.empty()) {
        store(name, size, std::string(field).c_str());
        return;
    }
    for (const char* variable : environment) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            store(name, size, value);
            return;
        }
    }
    store(name, size, otherwise);
}

void claim_outputs() {
    ++module.picture;
}

bool claim_output(const char* name) {
    if (module.picture == 0) {
        return true;
    }
    const auto [claim, is_new] =
        module.claims.try_emplace(std::hash<std::string_view>{}(name), module.picture);
    if (claim->second != module.picture) {
        MESS_print(mess_error, "open_output: The output is that of an earlier input: %s\n", name);
        return false;
    }
    return true;
}

std::FILE* open_output(const char* name, bool append) {
    Output* const output = slot_of(nullptr);
    if (output == nullptr) {
        return nullptr;
    }
    guard();
    output->given_up = false;
    copy_text(output->name.data(), output->name.size(), name);
    errno = EIO;
    output->file = open_any(*output, name, append);
    if (output->file == nullptr) {
        module.fault.clear();
        if (errno != 0) {
            note_fault(name, std::strerror(errno));
        }
        remove_unfinished_of(*output);
        return nullptr;
    }
    std::setvbuf(output->file, output->buffer.data(), _IOFBF, output->buffer.size());
    return output->file;
}

std::string_view take_end_off(const char* name, std::initializer_list<std::string_view> ends) {
    std::array<char, file_name_size> path{};
    struct stat info {};
    if (stat(FILE_add_user_path(name, path.data()), &info) != 0 || !S_ISREG(info.st_mode)) {
        return {};
    }
    const FILE_ptr file(std::fopen(path.data(), "re"));
    for (const std::string_view end : ends) {
        std::array<char, 64> last{};
        const auto size = static_cast<off_t>(end.size());
        if (file && end.size() <= last.size() && info.st_size >= size &&
            fseeko(file.get(), -size, SEEK_END) == 0 &&
            std::fread(last.data(), 1, end.size(), file.get()) == end.size() &&
            end == std::string_view(last.data(), end.size())) {
            return truncate(path.data(), info.st_size - size) == 0 ? end : std::string_view();
        }
    }
    return {};
}

int close_output(std::FILE* file) {
    Output* const output = slot_of(file);
    if (file == nullptr || output == nullptr) {
        return -1;
    }
    output->file = nullptr;
    errno = 0;
    const bool failed = std::fflush(file) != 0 || std::ferror(file) != 0;
    const int flushed = errno;
    const int closed = FILE_close(file);
    int status = closed != 0 || failed ? -1 : 0;
    module.fault.clear();
    if (status != 0) {
        note_fault(output->name.data(), *output->name.data() == '|' && closed > 0
                                            ? "the command failed"
                                            : reason(failed ? flushed : errno));
    }
    if (output->given_up || ZYR_lacked_memory()) {
        status = 1;
    }
    if (output->pending != 0 && status == 0 && !take_name(*output)) {
        status = -1;
    }
    remove_unfinished_of(*output);
    return status;
}

void discard_output(std::FILE* file) {
    if (Output* const output = slot_of(file); file != nullptr && output != nullptr) {
        output->given_up = true;
        static_cast<void>(close_output(file));
    }
}

void explain_output(const char* routine) {
    if (!module.fault.empty()) {
        MESS_print(mess_warn, "%s: %s\n", routine, module.fault.c_str());
        module.fault.clear();
    }
}

void give_up_outputs() {
    for (Output& output : outputs) {
        output.given_up = output.file != nullptr;
    }
}

void take_options(const char* text, int first, bool (*take)(const char* option)) {
    const TextList fields(text, ',');
    for (int i = first; i < fields.count(); ++i) {
        if (*fields[i] != '\0' && !take(fields[i])) {
            MESS_print(mess_warn, "gopen_ws: invalid option: %s\n", fields[i]);
        }
    }
}

std::time_t creation_time() {
    const char* fixed = std::getenv("SOURCE_DATE_EPOCH");
    std::string_view text = fixed == nullptr ? "" : fixed;
    std::int64_t time = 0;
    if (take_plain(&text, &time) && text.empty()) {
        return time;
    }
    return DATE_get_time(nullptr);
}

std::string creation_date() {
    const std::time_t now = creation_time();
    std::array<char, 32> date{};
    return ctime_r(&now, date.data());
}

void put_line(std::FILE* file, std::size_t most, const char* format, std::va_list args) {
    if (file == nullptr) {
        return;
    }
    std::array<char, 512> text; // a page has one for each of its texts: not cleared
    const std::size_t size = std::min(most + 1, text.size() - 1);
    const int wanted = std::vsnprintf(text.data(), size, format, args);
    const std::size_t length = std::min(static_cast<std::size_t>(std::max(wanted, 0)), size - 1);
    const auto is_control = [](unsigned char c) { return c < ' ' || c == 0x7F; };
    std::replace_if(text.begin(), text.begin() + length, is_control, ' ');
    text[length] = '\n';
    std::fwrite(text.data(), 1, length + 1, file);
}
