// files.cpp: file access, paths and naming conventions. Owns the current
// convention and file name (file_state.h), one saved copy of them, and the
// list of open pipes. The resource database must be up for anything that
// looks at paths.
//
// Naming-convention file: one line a kind, fields split at blanks, "#" begins
// a comment:
//   kind       word, up to 19 characters, compared without regard to case
//   template   see name_tmpl.h
//   header     template of header files, "-" for none
//   size       a usable file is larger; may be absent
// The first line whose kind is asked for, or begins what is asked for, counts.
#include "files.h"

#include "date.h"
#include "file_state.h"
#include "near_word.h"
#include "no_memory.h"
#include "state_keeper.h"
#include "text_list.h"
#include "text_num.h"
#include "tools.h"
#include "zyrresrc.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int no_step = 100000;             // step of a template without time fields
constexpr unsigned trace_conv = 0x10000000; // what is looked for and found
constexpr unsigned trace_keys = 0x80000000;
constexpr std::size_t kind_size = 20;

struct Saved {
    char conv[file_name_size] = "";
    char hconv[file_name_size] = "";
    char filename[file_name_size] = "";
    char ext[sizeof FileState::ext] = "";
    int filename_type = 0;
    int late_off = 3600;
    int min_size = 0;
};

// What was read of a file, and which file it was then.
struct KeptFile {
    struct stat info {};
    std::shared_ptr<const std::string> text;
};

struct Module {
    FileState state;
    Saved saved;
    std::string no_conventions;               // the file of them that was missed
    bool told_length = false;                 // of a file of conventions that is too long
    bool told_line = false;                   // of a line of them that is too long
    std::string told_end;                     // text that ended at a limit
    std::vector<std::FILE*> pipes;            // streams that FILE_close must wait for
    std::set<std::pair<dev_t, ino_t>> inputs; // plain files that were opened for reading
    bool keeps = false;
    std::map<std::string, KeptFile> kept; // by the name as it was asked for
    std::size_t kept_bytes = 0;
};
Module module;

// --- Files kept in memory ----------------------------------------------------------

constexpr std::size_t most_kept = std::size_t{16} << 20; // of all; more is read again

struct KeptReader {
    std::shared_ptr<const std::string> text; // stays while it is read
    std::size_t at = 0;
};

ssize_t read_kept(void* cookie, char* buffer, std::size_t size) {
    auto* reader = static_cast<KeptReader*>(cookie);
    const std::size_t n = reader->text->copy(buffer, size, reader->at);
    reader->at += n;
    return static_cast<ssize_t>(n);
}

int seek_kept(void* cookie, off64_t* offset, int whence) {
    auto* reader = static_cast<KeptReader*>(cookie);
    const auto size = static_cast<off64_t>(reader->text->size());
    const off64_t from = whence == SEEK_CUR   ? static_cast<off64_t>(reader->at)
                         : whence == SEEK_END ? size
                                              : 0;
    if (from + *offset < 0 || from + *offset > size) {
        return -1;
    }
    *offset += from;
    reader->at = static_cast<std::size_t>(*offset);
    return 0;
}

int close_kept(void* cookie) {
    const std::unique_ptr<KeptReader> reader(static_cast<KeptReader*>(cookie));
    return 0;
}

bool is_same(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

// The text of a file that is kept, or is from now on; null for any other file.
std::shared_ptr<const std::string> kept_text(const std::string& path) {
    struct stat info {};
    const auto found = module.kept.find(path);
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return nullptr;
    }
    if (found != module.kept.end()) {
        if (is_same(found->second.info, info)) {
            return found->second.text;
        }
        module.kept_bytes -= found->second.text->size();
        module.kept.erase(found);
    }
    const auto size = static_cast<std::size_t>(info.st_size);
    if (size > most_kept - std::min(most_kept, module.kept_bytes)) {
        return nullptr;
    }
    std::string text(size, '\0');
    const FILE_ptr file(FILE_open(path.c_str(), "r"));
    if (file == nullptr || std::fread(text.data(), 1, size, file.get()) != size) {
        return nullptr;
    }
    module.kept_bytes += size;
    KeptFile& kept = module.kept[path];
    kept = {info, std::make_shared<const std::string>(std::move(text))};
    return kept.text;
}

// Null where the file is not kept.
std::FILE* open_kept(const char* name) {
    if (!module.keeps || FILE_is_stdio(name) != 0 || *name == '|') {
        return nullptr;
    }
    char path[file_name_size];
    auto reader =
        std::make_unique<KeptReader>(KeptReader{kept_text(FILE_add_user_path(name, path))});
    if (reader->text == nullptr) {
        return nullptr;
    }
    std::FILE* stream =
        fopencookie(reader.get(), "r",
                    {.read = read_kept, .write = nullptr, .seek = seek_kept, .close = close_kept});
    static_cast<void>(reader.release()); // close_kept has it
    return ZYR_need(stream);
}

// --- Texts with an end -------------------------------------------------------------

constexpr std::size_t most_text = std::size_t{64} << 20;
constexpr std::size_t most_line = std::size_t{1} << 20; // no text has such a line, a device may

// A stream that is read through another one, up to a limit.
struct Bounded {
    std::FILE* inner;
    std::string name;
    std::size_t left = most_text;
    std::size_t line = 0; // bytes since the last line began
};

// Once for a name, though the text may be looked up again and again.
void tell_end(const std::string& name, const char* what) {
    if (module.told_end != name) {
        module.told_end = name;
        MESS_print(mess_warn, "FILE_open_text: %s: %s\n", what, name.c_str());
    }
}

// A line at a time, so that a terminal or a pipe is not waited for longer than
// the reader waits. At the limit it is the end.
ssize_t read_bounded(void* cookie, char* buffer, std::size_t size) {
    auto* bounded = static_cast<Bounded*>(cookie);
    if (bounded->left == 0 || bounded->line > most_line) {
        tell_end(bounded->name,
                 bounded->left == 0 ? "Text ends after 64 MB" : "Text ends, a line has 1 MB");
        return 0;
    }
    size = std::min(size, bounded->left);
    std::size_t n = 0;
    for (int c = 0; n < size && c != '\n' && (c = getc_unlocked(bounded->inner)) != EOF;) {
        buffer[n++] = static_cast<char>(c);
    }
    bounded->left -= n;
    bounded->line = n > 0 && buffer[n - 1] == '\n' ? 0 : bounded->line + n;
    return static_cast<ssize_t>(n);
}

int close_bounded(void* cookie) {
    const std::unique_ptr<Bounded> bounded(static_cast<Bounded*>(cookie));
    return FILE_close(bounded->inner);
}

// `whole`: a plain file needs no limit.
std::FILE* open_bounded(const char* name, bool whole) {
    if (std::FILE* kept = open_kept(name)) {
        return kept;
    }
    std::FILE* inner = FILE_open(name, "r");
    struct stat info {};
    if (inner == nullptr || (fstat(fileno(inner), &info) == 0 && S_ISREG(info.st_mode) &&
                             (whole || static_cast<std::size_t>(info.st_size) <= most_text))) {
        return inner;
    }
    auto bounded = std::make_unique<Bounded>(Bounded{inner, name});
    std::FILE* stream = fopencookie(
        bounded.get(), "r",
        {.read = read_bounded, .write = nullptr, .seek = nullptr, .close = close_bounded});
    static_cast<void>(bounded.release()); // close_bounded has it
    return ZYR_need(stream);
}

bool stat_of(const char* name, struct stat* info) {
    char path[file_name_size];
    return stat(FILE_add_user_path(name, path), info) == 0;
}

// An opened file with its buffer: the library would take a file without memory for
// one at its end. Without memory for file or buffer the run ends.
std::FILE* with_buffer(std::FILE* file) {
    if (file == nullptr ? errno == ENOMEM : std::setvbuf(file, nullptr, _IOFBF, BUFSIZ) != 0) {
        ZYR_no_memory();
    }
    return file;
}

// Notes a file that is read. False for a directory, which opens like a file.
bool note_input(std::FILE* file) {
    struct stat info {};
    if (fstat(fileno(file), &info) != 0) {
        return true;
    }
    if (S_ISREG(info.st_mode)) {
        module.inputs.emplace(info.st_dev, info.st_ino);
    }
    return !S_ISDIR(info.st_mode);
}

// Takes the keys out of ":c=text" suffixes; the kind ends at the first of them.
void take_keys(char* kind) {
    char* end = nullptr;
    for (char* at = std::strchr(kind, ':'); at != nullptr; at = std::strchr(at + 1, ':')) {
        const bool fits = at[1] != '\0' && at[2] == '=' && at[3] != '\0' && at[3] != ':';
        if (!fits) {
            continue;
        }
        const std::string text(at + 3, std::strcspn(at + 3, ":"));
        FILE_set_key(at[1], text.c_str());
        MESS_print(trace_keys, "KEY: %c = %s\n", at[1], text.c_str());
        end = end == nullptr ? at : end;
    }
    if (end != nullptr) {
        *end = '\0';
    }
}

// The next blank-separated word of a line.
std::string next_word(const char** at) {
    const char* from = *at;
    while (std::isspace(static_cast<unsigned char>(*from)) != 0) {
        ++from;
    }
    const char* end = from;
    while (*end != '\0' && std::isspace(static_cast<unsigned char>(*end)) == 0) {
        ++end;
    }
    *at = end;
    return {from, end};
}

// Takes the convention of one line if it is for the kind, or where `whole` is not
// asked for its beginning.
bool take_line(const char* line, const char* kind, bool whole) {
    FileState& s = module.state;
    const std::string name = next_word(&line).substr(0, kind_size - 1);
    copy_text(s.conv, sizeof s.conv, next_word(&line).c_str());
    const std::string header = next_word(&line);
    copy_text(s.hconv, sizeof s.hconv, header.starts_with('-') ? "" : header.c_str());
    s.min_size = 0;
    scan_int(&line, any_width, &s.min_size);
    if (name.empty()) {
        return false;
    }
    const bool runs = *s.conv == '|' || *s.hconv == '|';
    if (runs && strnicmp(kind, name.c_str(), static_cast<int>(name.size())) == 0) {
        MESS_print(mess_warn,
                   "FILE_set_name: A naming convention runs no command, refused: %s %s\n",
                   name.c_str(), s.conv);
        return false;
    }
    if (stricmp(kind, name.c_str()) == 0) {
        MESS_print(trace_conv, "File name match for: %s\n", kind);
        return true;
    }
    if (whole || strnicmp(kind, name.c_str(), static_cast<int>(name.size())) != 0) {
        return false;
    }
    const char* code = std::strrchr(kind, '_');
    copy_text(s.ext, sizeof s.ext, code == nullptr ? "" : code + 1);
    MESS_print(trace_conv, "File name partial match for: %s-%s ext: %s\n", kind, name.c_str(),
               s.ext);
    return true;
}

bool search_convention(std::FILE* file, const char* path, const char* kind, bool whole) {
    constexpr int most_lines = 10000;
    char line[line_length + 2]; // one more, to see that a line is too long
    for (int n = 0; fgetnline(file, line, line_length + 1) >= 0; ++n) {
        if (n == most_lines) {
            const unsigned level = module.told_length ? 0 : mess_warn; // of a run's many searches
            MESS_print(level, "FILE_set_name: More than %d lines: %s\n", most_lines, path);
            module.told_length = true;
            break;
        }
        if (line[0] == '#') {
            continue;
        }
        if (std::strlen(line) > line_length) {
            const unsigned level = module.told_line ? 0 : mess_warn;
            MESS_print(level, "FILE_set_name: Line too long: %.40s...\n", line);
            module.told_line = true;
            line[line_length] = '\0';
        }
        if (take_line(line, kind, whole)) {
            return true;
        }
    }
    return false;
}

int set_name(const char* kind, bool whole) {
    FileState& s = module.state;
    s.filename[0] = '\0';
    if (kind == nullptr || stricmp(kind, "none") == 0) {
        s.conv[0] = '\0';
        return 0;
    }
    if (std::strlen(kind) >= file_name_size) {
        MESS_print(mess_warn, "FILE_set_name: Name too long: %.40s...\n", kind);
        s.conv[0] = '\0';
        return 0;
    }
    if (*kind == '@') {
        copy_text(s.conv, sizeof s.conv, kind + 1);
        return 1;
    }
    char name[file_name_size];
    copy_text(name, sizeof name, kind);
    take_keys(name);

    const char* conv_name = RES_get("name_conv");
    if (conv_name == nullptr || *conv_name == '\0') {
        conv_name = "name_conv";
    }
    char path[file_name_size];
    FILE_add_path(RES_get("file_path"), conv_name, path);
    const FILE_ptr file(FILE_open_text(path));
    if (file == nullptr) {
        if (module.no_conventions != path) { // each kind of file asks for it
            module.no_conventions = path;
            MESS_print(mess_warn, "FILE_set_name: No file name convention file: %s\n", path);
            FILE_tell_nearest("FILE_set_name", RES_get("file_path"), conv_name);
        }
        copy_text(s.conv, sizeof s.conv, name);
        return 0;
    }
    MESS_print(trace_conv, "Opening name convention file: %s\n", path);
    s.ext[0] = '\0';
    if (search_convention(file.get(), path, name, whole)) {
        return 1;
    }
    s.hconv[0] = '\0';
    s.min_size = 0;
    copy_text(s.conv, sizeof s.conv, name);
    MESS_print(trace_conv, "No file name conversion for: %s\n", name);
    return 0;
}

} // namespace

FileState& file_state() {
    return module.state;
}

void store_name(const char* routine, char* out, const char* text) {
    if (copy_text(out, file_name_size, text) != 0) {
        MESS_print(mess_warn, "%s: Name too long: %.40s...\n", routine, out);
    }
}

// --- Files and paths ---------------------------------------------------------

int FILE_is_stdio(const char* name) {
    return name == nullptr || *name == '\0' || std::strcmp(name, "-") == 0 ||
                   stricmp(name, "std") == 0 || stricmp(name, "stdn") == 0
               ? 1
               : 0;
}

int FILE_fullpath(const char* name) {
    return *name == '/' || *name == '.' || *name == '~' ? 1 : 0;
}

int FILE_exist(const char* name) {
    struct stat info {};
    return FILE_is_stdio(name) != 0 || stat_of(name, &info) ? 1 : 0;
}

int FILE_is_dir(const char* name) {
    struct stat info {};
    return stat_of(name, &info) && S_ISDIR(info.st_mode) ? 1 : 0;
}

long FILE_size(const char* name) {
    struct stat info {};
    return stat_of(name, &info) ? static_cast<long>(info.st_size) : -1;
}

int FILE_delete(const char* name) {
    char path[file_name_size];
    return unlink(FILE_add_user_path(name, path));
}

std::FILE* FILE_open(const char* name, const char* mode) {
    const bool reads = *mode == 'r';
    if (FILE_is_stdio(name) != 0) {
        return reads ? stdin : stdout;
    }
    if (*name == '|') {
        std::fflush(nullptr);
        std::FILE* pipe = with_buffer(popen(name + 1, reads ? "r" : "w"));
        if (pipe != nullptr) {
            module.pipes.push_back(pipe);
        }
        return pipe;
    }
    char path[file_name_size];
    FILE_add_user_path(name, path);
    if (*mode == 'w' || *mode == 'a') {
        FILE_make_dir(path, 1);
    }
    std::FILE* const file = with_buffer(std::fopen(path, mode));
    if (reads && file != nullptr && !note_input(file)) {
        std::fclose(file);
        errno = EISDIR;
        return nullptr;
    }
    return file;
}

int FILE_is_input(const char* name) {
    struct stat info {};
    return stat_of(name, &info) && module.inputs.contains({info.st_dev, info.st_ino}) ? 1 : 0;
}

void FILE_keep_read() {
    module.keeps = true;
}

std::FILE* FILE_open_text(const char* name) {
    return open_bounded(name, false);
}

std::FILE* FILE_open_bounded(const char* name) {
    return open_bounded(name, true);
}

int FILE_close(std::FILE* stream) {
    if (stream == nullptr) {
        return -1;
    }
    if (stream == stdin) {
        return 0;
    }
    if (stream == stdout || stream == stderr) {
        return std::fflush(stream);
    }
    if (std::erase(module.pipes, stream) != 0) {
        return pclose(stream);
    }
    return std::fclose(stream);
}

void FILE_note_new(std::FILE* file) {
    struct stat info {};
    if (fstat(fileno(file), &info) == 0) {
        module.inputs.erase({info.st_dev, info.st_ino});
    }
}

char* FILE_add_path_delim(char* path) {
    const std::size_t n = std::strlen(path);
    if (n > 0 && path[n - 1] != '/' && n + 1 < file_name_size) {
        path[n] = '/';
        path[n + 1] = '\0';
    }
    return path;
}

char* FILE_add_path(const char* path, const char* file, char* out) {
    std::string name;
    if (FILE_is_stdio(file) == 0 && FILE_fullpath(file) == 0 && path != nullptr && *path != '\0') {
        name = path;
        if (!name.ends_with('/')) {
            name += '/';
        }
    }
    name += file == nullptr ? "" : file;
    store_name("FILE_add_path", out, name.c_str());
    return out;
}

char* FILE_add_user_path(const char* in, char* out) {
    std::string name = in == nullptr ? "" : in;
    if (name.starts_with('~')) {
        const std::size_t slash = std::min(name.find('/'), name.size());
        const std::string user = name.substr(1, slash - 1);
        const passwd* entry = user.empty() ? getpwuid(getuid()) : getpwnam(user.c_str());
        if (entry != nullptr) {
            name.replace(0, slash, entry->pw_dir);
        }
    }
    store_name("FILE_add_user_path", out, name.c_str());
    return out;
}

void FILE_tell_nearest(const char* routine, const char* path, const char* file) {
    char name[file_name_size];
    const std::string full = FILE_add_user_path(FILE_add_path(path, file, name), name);
    if (FILE_exist(name) != 0) {
        if (FILE_is_dir(name) != 0 || access(name, R_OK) != 0) {
            MESS_print(mess_warn, "%s: %s: %s\n", routine, name,
                       FILE_is_dir(name) != 0 ? "Is a directory" : std::strerror(errno));
        }
        return;
    }
    const std::size_t slash = full.rfind('/');
    const std::string directory = slash == std::string::npos ? "" : full.substr(0, slash + 1);
    std::vector<std::string> there;
    std::error_code error;
    constexpr std::size_t most = 10000;
    for (std::filesystem::directory_iterator
             at(directory.empty() ? std::string(".") : directory, error),
         end;
         !error && at != end && there.size() < most; at.increment(error)) {
        there.push_back(at->path().filename().string());
    }
    std::sort(there.begin(), there.end()); // of equally near ones the same in any directory
    KnownWords words;
    for (const std::string& one : there) {
        words.push_back({one.c_str()});
    }
    const std::string nearest(close_word(words, full.substr(directory.size())));
    if (!nearest.empty()) {
        MESS_print(mess_warn, "%s: The nearest file is %s%s\n", routine, directory.c_str(),
                   nearest.c_str());
    }
}

int FILE_make_dir(const char* path, int drop) {
    std::string name = path == nullptr ? "" : path;
    std::replace(name.begin(), name.end(), '\\', '/');
    const std::size_t slash = name.rfind('/');
    const std::string parent = slash == std::string::npos ? "" : name.substr(0, slash);
    struct stat info {};
    if (parent.empty() || stat_of(parent.c_str(), &info)) {
        return 1;
    }
    const TextList part(name.c_str(), '/');
    std::string directory;
    for (int i = 0; i < part.count() - drop; ++i) {
        if (*part[i] != '\0') {
            directory += part[i];
            directory += '/';
            mkdir(directory.c_str(), 0755); // a failure shows when the file is opened
        } else if (!directory.ends_with('/')) {
            directory += '/';
        }
    }
    return 0;
}

int FILE_overwrite(const char* name, int mode) {
    constexpr int refused = 0;
    constexpr int overwrite = 1;
    constexpr int append = 2;
    constexpr int use = 3;
    if (FILE_is_stdio(name) != 0 || FILE_exist(name) == 0) {
        return overwrite;
    }
    if (FLAG_get(flag_file_param) > 0) {
        return FLAG_get(flag_file_param);
    }
    if (FLAG_batch() != 0) {
        return use;
    }
    if (mode != 1 && mode != 2) {
        return refused;
    }
    char prompt[file_name_size + 60];
    std::snprintf(prompt, sizeof prompt,
                  "%.*s: exists overwrite (Y,N,Use,Over%s): ", static_cast<int>(file_name_size),
                  name, mode == 2 ? ",App" : "");
    char answer[81];
    ZYR_promptl(prompt, answer);
    switch (*answer) {
    case 'Y':
    case 'y':
    case 'O':
    case 'o':
        return overwrite;
    case 'A':
    case 'a':
        return mode == 2 ? append : use;
    default:
        return use;
    }
}

// --- Naming conventions --------------------------------------------------------

int FILE_set_name(const char* kind) {
    return set_name(kind, false);
}

int FILE_set_whole_name(const char* kind) {
    return set_name(kind, true);
}

void FILE_save_name_conv() {
    const FileState& s = module.state;
    Saved& saved = module.saved;
    copy_text(saved.conv, sizeof saved.conv, s.conv);
    copy_text(saved.hconv, sizeof saved.hconv, s.hconv);
    copy_text(saved.filename, sizeof saved.filename, s.filename);
    copy_text(saved.ext, sizeof saved.ext, s.ext);
    saved.filename_type = s.filename_type;
    saved.late_off = s.late_off;
    saved.min_size = s.min_size;
}

void FILE_restore_name_conv() {
    FileState& s = module.state;
    const Saved& saved = module.saved;
    copy_text(s.conv, sizeof s.conv, saved.conv);
    copy_text(s.hconv, sizeof s.hconv, saved.hconv);
    copy_text(s.filename, sizeof s.filename, saved.filename);
    copy_text(s.ext, sizeof s.ext, saved.ext);
    s.filename_type = saved.filename_type;
    s.late_off = saved.late_off;
    s.min_size = saved.min_size;
}

void FILE_set_late_off(int seconds) {
    module.state.late_off = seconds;
}

int FILE_get_late_off() {
    return module.state.late_off;
}

int FILE_get_offset() {
    return module.state.late_off < 1 ? no_step : module.state.late_off;
}

void FILE_set_min_size(int bytes) {
    module.state.rmin_size = bytes;
}

void FILE_set_key(char c, const char* text) {
    auto& key = module.state.keys.text[static_cast<unsigned char>(c)];
    copy_text(key, sizeof key, text);
    fill_string(key, ' ', '_');
}

void FILE_set_file_key(const char* text) {
    copy_text(module.state.keys.file, sizeof module.state.keys.file, text);
    fill_string(module.state.keys.file, ' ', '_');
}

char* FILE_get_key(char c, char* buffer) {
    constexpr std::size_t size = sizeof NameKeys::text[0];
    copy_text(buffer, size, module.state.keys.text[static_cast<unsigned char>(c)]);
    return buffer;
}

void FILE_set_filename(const char* text) {
    store_name("FILE_set_filename", module.state.filename, text);
    module.state.filename_type = 1;
}

const char* FILE_get_filename(char* buffer) {
    if (buffer != nullptr) {
        copy_text(buffer, file_name_size, module.state.filename);
    }
    return module.state.filename;
}

void FILE_set_time(const Date* date) {
    module.state.set = *date;
}

void FILE_get_date(Date* date) {
    *date = module.state.file_date;
}

void FILE_put_date(const Date* date) {
    module.state.file_date = *date;
}

void keep_files(StateKeeper& keeper) {
    keeper.keep(module.state);
    keeper.keep(module.saved);
}
