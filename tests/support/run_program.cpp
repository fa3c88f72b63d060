#include "run_program.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Pipe {
    std::array<int, 2> fd{-1, -1};
    Pipe() {
        if (pipe(fd.data()) != 0) {
            std::abort();
        }
    }
};

void drop(int& fd) {
    if (fd >= 0) {
        close(fd);
        fd = -1;
    }
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts) {
        all.push_back(text.data());
    }
    all.push_back(nullptr);
    return all;
}

std::vector<std::string> environment(const ProgramCall& call) {
    std::map<std::string, std::string> all = {
        {"PATH",       "/usr/bin:/bin"},
        {"zyrdefault", "."            }
    };
    for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(name)) {
            all[name] = value;
        }
    }
    for (const auto& [name, value] : call.env) {
        all[name] = value;
    }
    if (all["zyrdefault"] == "-") {
        all.erase("zyrdefault");
    }
    std::vector<std::string> texts;
    for (const auto& [name, value] : all) {
        texts.push_back(name + "=" + value);
    }
    return texts;
}

// Adds what is there to read; closes `fd` at the end.
void drain(int& fd, std::string& text) {
    std::array<char, 4096> piece{};
    const ssize_t count = read(fd, piece.data(), piece.size());
    if (count > 0) {
        text.append(piece.data(), static_cast<std::size_t>(count));
    } else {
        drop(fd);
    }
}

int exit_code(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

ProgramRun run_program(const std::string& program, const ProgramCall& call) {
    ProgramRun run;
    const TempDir fresh;
    const std::string directory = call.directory.empty() ? fresh.path() : call.directory;
    std::vector<std::string> args = {program};
    args.insert(args.end(), call.args.begin(), call.args.end());
    std::vector<std::string> env = environment(call);
    const auto argv = pointers(args);
    const auto envp = pointers(env);
    Pipe out;
    Pipe err;
    std::FILE* input = std::tmpfile(); // a file: the program need not read it all
    if (input == nullptr) {
        return run;
    }
    std::fwrite(call.input.data(), 1, call.input.size(), input);
    std::rewind(input);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(fileno(input), STDIN_FILENO);
        dup2(out.fd[1], STDOUT_FILENO);
        dup2(err.fd[1], STDERR_FILENO);
        for (int fd : {out.fd[0], out.fd[1], err.fd[0], err.fd[1]}) {
            close(fd);
        }
        if (chdir(directory.c_str()) == 0) {
            execve(program.c_str(), argv.data(), envp.data());
        }
        _exit(127);
    }
    std::fclose(input);
    drop(out.fd[1]);
    drop(err.fd[1]);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(call.timeout_s);
    while (out.fd[0] >= 0 || err.fd[0] >= 0) {
        std::array<pollfd, 2> ready = {
            {{out.fd[0], POLLIN, 0}, {err.fd[0], POLLIN, 0}}
        };
        poll(ready.data(), ready.size(), 100);
        if (ready[0].revents != 0) {
            drain(out.fd[0], run.out);
        }
        if (ready[1].revents != 0) {
            drain(err.fd[0], run.err);
        }
        if (std::chrono::steady_clock::now() > end) {
            run.timed_out = true;
            kill(pid, SIGKILL);
            break;
        }
    }
    drop(out.fd[0]);
    drop(err.fd[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    run.code = exit_code(status);
    return run;
}

TempDir::TempDir() : path_((fs::temp_directory_path() / "zyrtestXXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) {
        std::abort();
    }
}

TempDir::~TempDir() {
    std::error_code ignored; // a test's rest is no reason to fail
    fs::remove_all(path_, ignored);
}

std::string TempDir::write(const std::string& name, const std::string& text) const {
    const fs::path full = fs::path(path_) / name;
    fs::create_directories(full.parent_path());
    std::ofstream(full, std::ios::binary) << text;
    return full.string();
}

std::string read_text(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void feed_stdin(const std::string& text) {
    const TempDir dir;
    if (std::freopen(dir.write("stdin", text).c_str(), "r", stdin) == nullptr) {
        std::abort();
    }
}

int start_child(int* fd) {
    std::fflush(nullptr);
    const Pipe ends;
    const pid_t pid = fork();
    close(ends.fd[pid == 0 ? 0 : 1]);
    *fd = ends.fd[pid == 0 ? 1 : 0];
    return pid;
}

void end_child(int fd, const std::string& text) {
    const ssize_t written = write(fd, text.data(), text.size());
    std::fflush(nullptr);
    _exit(written == static_cast<ssize_t>(text.size()) ? 0 : 1);
}

std::string read_child(int fd, int pid) {
    std::string text;
    while (fd >= 0) {
        drain(fd, text);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    const int code = exit_code(status);
    return code == 0 ? text : text + "exit " + std::to_string(code);
}
