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
    // All of it; a program that still writes is not disturbed.
    std::string text() const {
        std::string all;
        std::array<char, 4096> part{};
        ssize_t got = 0;
        while ((got = pread(fd(), part.data(), part.size(), static_cast<off_t>(all.size()))) > 0) {
            all.append(part.data(), static_cast<std::size_t>(got));
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

// What a program reads and writes, and the directory made for it.
struct RunningProgram::Streams {
    explicit Streams(const std::string& input) : in(input) {}
    TempDir fresh;
    Exchange in;
    Exchange out;
    Exchange err;
};

RunningProgram::RunningProgram(const std::string& program, const ProgramCall& call)
    : streams_(std::make_unique<Streams>(call.input)), timeout_s_(call.timeout_s) {
    const std::string directory = call.directory.empty() ? streams_->fresh.path() : call.directory;
    std::vector<std::string> args = {program};
    args.insert(args.end(), call.args.begin(), call.args.end());
    std::vector<std::string> env = environment(call);
    const auto argv = pointers(args);
    const auto envp = pointers(env);
    pid_ = fork();
    if (pid_ == 0) {
        dup2(streams_->in.fd(), STDIN_FILENO);
        dup2(streams_->out.fd(), STDOUT_FILENO);
        dup2(streams_->err.fd(), STDERR_FILENO);
        if (chdir(directory.c_str()) == 0) {
            execve(program.c_str(), argv.data(), envp.data());
        }
        _exit(127);
    }
}

RunningProgram::~RunningProgram() {
    if (!ended()) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

std::string RunningProgram::out() const {
    return streams_->out.text();
}

std::string RunningProgram::err() const {
    return streams_->err.text();
}

bool RunningProgram::ended() {
    ended_ = ended_ || waitpid(pid_, &status_, WNOHANG) != 0;
    return ended_;
}

ProgramRun RunningProgram::wait() {
    ProgramRun run;
    constexpr int tries_a_second = 200;
    for (int tries = timeout_s_ * tries_a_second; !ended(); --tries) {
        if (tries < 0) {
            run.timed_out = true;
            kill(pid_, SIGKILL);
        }
        usleep(1000000 / tries_a_second);
    }
    run.code = exit_code(status_);
    run.out = out();
    run.err = err();
    return run;
}

ProgramRun run_program(const std::string& program, const ProgramCall& call) {
    return RunningProgram(program, call).wait();
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

std::string TempDir::rewrite(const std::string& name, const std::string& text) const {
    fs::remove(fs::path(path_) / name);
    return write(name, text);
}

std::string read_text(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

int count_text(const std::string& text, const std::string& part) {
    int count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}
