// out_file.cpp: the output of a file device. Owns its buffer, which has to
// outlive the file: an early exit leaves the last of it to the library to flush.

#include "out_file.h"

#include "zyr.h"

#include "date.h"
#include "files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace {

std::array<char, 1 << 16> out_buffer;

// Standard output under a descriptor of its own: a run that goes on in the
// background closes the program's.
std::FILE* own_stdout() {
    std::fflush(stdout);
    const int fd = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    return fd < 0 ? nullptr : fdopen(fd, "w");
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

std::FILE* open_output(const char* name, bool append) {
    // A command that ends early must not take the program with it.
    if (*name == '|')
        std::signal(SIGPIPE, SIG_IGN);
    std::FILE* file = FILE_open(name, append ? "a" : "w");
    if (file == stdout)
        file = own_stdout();
    if (file != nullptr)
        std::setvbuf(file, out_buffer.data(), _IOFBF, out_buffer.size());
    return file;
}

int close_output(std::FILE* file) {
    const bool failed = std::fflush(file) != 0 || std::ferror(file) != 0;
    return FILE_close(file) != 0 || failed ? -1 : 0;
}

void take_options(const char* text, int first, bool (*take)(const char* option)) {
    int count = 0;
    char** fields = nullptr;
    parse_string(text, ',', &count, &fields);
    for (int i = first; i < count; ++i) {
        if (*fields[i] != '\0' && !take(fields[i]))
            MESS_print(mess_warn, "gopen_ws: invalid option: %s\n", fields[i]);
    }
    free_parsed_array(count, fields);
}

std::string creation_date() {
    std::time_t now = 0;
    DATE_get_time(&now);
    std::array<char, 32> date{};
    return ctime_r(&now, date.data());
}

void put_line(std::FILE* file, std::size_t most, const char* format, std::va_list args) {
    if (file == nullptr)
        return;
    std::array<char, 512> text{};
    std::vsnprintf(text.data(), std::min(most + 1, text.size()), format, args);
    std::replace_if(
        text.begin(), text.begin() + std::strlen(text.data()),
        [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
    std::fprintf(file, "%s\n", text.data());
}
