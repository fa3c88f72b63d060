// run_program.h: runs the program as a user would, in an environment that
// holds nothing but what the test gives, and keeps what it said.
#pragma once

#include <map>
#include <string>
#include <vector>

struct ProgramCall {
    std::vector<std::string> args;
    // PATH is set; `zyrdefault` is "." unless given here, so that no installed
    // defaults file has a say. Give it as "-" to leave it unset.
    std::map<std::string, std::string> env;
    std::string input;     // what stands on standard input
    std::string directory; // to run in; empty: a fresh one
    int timeout_s = 30;
};

struct ProgramRun {
    int code = -1; // exit code; 128 and the signal's number for a signal
    bool timed_out = false;
    std::string out;
    std::string err;
};

ProgramRun run_program(const std::string& program, const ProgramCall& call);

// A directory of its own that goes when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    // Writes a file, with the directories in front of it. Returns its full name.
    std::string write(const std::string& name, const std::string& text) const;

private:
    std::string path_;
};

std::string read_text(const std::string& name);

// Puts `text` in place of standard input.
void feed_stdin(const std::string& text);

// Runs `body` in a process of its own and returns what its function result
// was; a test row can so start from untouched module state.
template <typename Body> std::string in_child(Body body);

// Parts of in_child.
std::string read_child(int fd, int pid);
int start_child(int* fd); // 0 in the child, with its end of the pipe
[[noreturn]] void end_child(int fd, const std::string& text);

template <typename Body> std::string in_child(Body body) {
    int fd = -1;
    const int pid = start_child(&fd);
    if (pid == 0) {
        end_child(fd, body());
    }
    return read_child(fd, pid);
}
