// page_floor.h: what benches measure a run of the program against: the run
// itself, and a loop that formats and writes the polygons of its page with a
// fixed two-decimal formatter. Times are of the processor, so that other
// processes disturb little.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

inline double processor_seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

inline double seconds_of(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

struct Run {
    double seconds = 0;
    long peak_kb = 0;
    int code = -1;
};

// Runs a program with the source tree's data files, its output thrown away.
inline Run run_process(const char* program, const std::vector<std::string>& args) {
    std::vector<char*> argv{const_cast<char*>(program)};
    for (const auto& arg : args) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        setenv("zyrdefault", ZYR_SOURCE_DIR "/etc", 1);
        setenv("zyrfile", ZYR_SOURCE_DIR "/etc", 1);
        const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
        for (const int stream : {0, 1, 2}) {
            dup2(null, stream);
        }
        execv(program, argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    return {seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime), usage.ru_maxrss,
            WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

inline Run run_program(const std::vector<std::string>& args) {
    return run_process(ZYR_PROGRAM, args);
}

// The bench itself as a process of its own, for floors with the start of one.
inline Run run_self(const std::vector<std::string>& args) {
    return run_process("/proc/self/exe", args);
}

template <typename Work> double least_time(int rounds, Work work) {
    double least = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const double start = processor_seconds();
        work();
        least = std::min(least, processor_seconds() - start);
    }
    return least;
}

inline std::string read_file(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Every figure of the page as a run of points; other lines are left out.
struct Page {
    std::vector<float> xy;
    std::vector<int> points; // of each figure
    std::vector<int> shades; // of each figure, grey in thousandths; -1: a line
};

inline Page read_page(const std::string& text) {
    Page page;
    int shade = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        char* rest = nullptr;
        const float x = std::strtof(line.c_str(), &rest);
        const float y = std::strtof(rest, &rest);
        if (std::strcmp(rest, " mv") == 0) {
            page.points.push_back(1);
            page.shades.push_back(-1);
        } else if (std::strcmp(rest, " ln") == 0 && !page.points.empty()) {
            ++page.points.back();
        } else {
            if (std::strcmp(rest, " setgray") == 0) {
                shade = static_cast<int>(std::lround(x * 1000));
            } else if (line == "fill" && !page.shades.empty()) {
                page.shades.back() = shade;
            }
            continue;
        }
        page.xy.push_back(x);
        page.xy.push_back(y);
    }
    return page;
}

inline char* put_fixed(char* out, float value) {
    const long hundredths = std::lround(std::fabs(value) * 100.0F);
    if (value < 0) {
        *out++ = '-';
    }
    std::array<char, 12> digits{};
    int n = 0;
    for (long whole = hundredths / 100; whole > 0 || n == 0; whole /= 10) {
        digits[static_cast<std::size_t>(n++)] = static_cast<char>('0' + whole % 10);
    }
    while (n > 0) {
        *out++ = digits[static_cast<std::size_t>(--n)];
    }
    *out++ = '.';
    *out++ = static_cast<char>('0' + hundredths / 10 % 10);
    *out++ = static_cast<char>('0' + hundredths % 10);
    return out;
}

inline char* put_text(char* out, const char* text) {
    const std::size_t n = std::strlen(text);
    std::memcpy(out, text, n);
    return out + n;
}

inline void write_page(const Page& page, const std::string& name) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(name.c_str(), "w"), std::fclose);
    std::vector<char> buffer(1 << 16);
    const float* xy = page.xy.data();
    char* out = buffer.data();
    for (const int points : page.points) {
        out = put_text(out, "%%FA:5\nnp\n");
        for (int i = 0; i < points; ++i, xy += 2) {
            out = put_fixed(out, xy[0]);
            *out++ = ' ';
            out = put_fixed(out, xy[1]);
            out = put_text(out, i == 0 ? " mv\n" : " ln\n");
            if (out - buffer.data() > (1 << 16) - 256) {
                std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()),
                            file.get());
                out = buffer.data();
            }
        }
        out = put_text(out, "cp\nfill\n");
    }
    std::fwrite(buffer.data(), 1, static_cast<std::size_t>(out - buffer.data()), file.get());
}
