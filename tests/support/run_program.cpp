#include "run_program.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// A nameless file that a child writes to and the parent reads, or the reverse.
class Exchange {
public:
    explicit Exchange(const std::string& text = "") : file_(std::tmpfile()) {
        if (file_ == nullptr) {
            std::abort();
        }
        std::fwrite(text.data(), 1, text.size(), file_.get());
        std::rewind(file_.get());
    }
    int fd() const { return fileno(file_.get()); }
    std::string text() const {
        std::string all;
        std::rewind(file_.get());
        for (int c = std::getc(file_.get()); c != EOF; c = std::getc(file_.get())) {
            all += static_cast<char>(c);
        }
        return all;
    }

private:
    std::unique_ptr<std::FILE, Closer> file_;
};

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
    std::vector<std::string> texts;
    for (const auto& [name, value] : all) {
        if (value != "unset") {
            texts.push_back(std::string(name).append("=").append(value));
        }
    }
    return texts;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all(texts.size() + 1); // and the closing null
    std::transform(texts.begin(), texts.end(), all.begin(),
                   [](std::string& text) { return text.data(); });
    return all;
}

int exit_code(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

ProgramRun run_program(const std::string& program, const ProgramCall& call) {
    const TempDir fresh;
    const std::string directory = call.directory.empty() ? fresh.path() : call.directory;
    std::vector<std::string> args = {program};
    args.insert(args.end(), call.args.begin(), call.args.end());
    std::vector<std::string> env = environment(call);
    const auto argv = pointers(args);
    const auto envp = pointers(env);
    const Exchange in(call.input);
    const Exchange out;
    const Exchange err;
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(in.fd(), STDIN_FILENO);
        dup2(out.fd(), STDOUT_FILENO);
        dup2(err.fd(), STDERR_FILENO);
        if (chdir(directory.c_str()) == 0) {
            execve(program.c_str(), argv.data(), envp.data());
        }
        _exit(127);
    }
    ProgramRun run;
    int status = 0;
    constexpr int tries_a_second = 200;
    int tries = call.timeout_s * tries_a_second;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (--tries < 0) {
            run.timed_out = true;
            kill(pid, SIGKILL);
        }
        usleep(1000000 / tries_a_second);
    }
    run.code = exit_code(status);
    run.out = out.text();
    run.err = err.text();
    return run;
}

std::string in_child(const std::function<std::string()>& body) {
    const Exchange result;
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        const std::string text = body();
        std::fflush(nullptr);
        _exit(write(result.fd(), text.data(), text.size()) < 0 ? 1 : 0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    const int code = exit_code(status);
    return code == 0 ? result.text() : result.text().append("exit ").append(std::to_string(code));
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
