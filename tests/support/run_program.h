// run_program.h: runs the program as a user would, in an environment that
// holds nothing but what the test gives, and keeps what it said.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct ProgramCall {
    std::vector<std::string> args;
    // PATH is set; `zyrdefault` is "." unless given here, so that no installed
    // defaults file has a say. Give it as "unset" to leave it out.
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

// A program that stays: started here, ended by what the test does to it, or
// killed with the object.
class RunningProgram {
public:
    RunningProgram(const std::string& program, const ProgramCall& call);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    int pid() const { return pid_; }
    std::string out() const; // what it has said so far
    std::string err() const;
    bool ended(); // has it ended by itself?
    // Waits for its end, and kills it if that does not come in time.
    ProgramRun wait();

private:
    struct Streams;
    std::unique_ptr<Streams> streams_;
    int timeout_s_;
    int pid_ = -1;
    int status_ = 0;
    bool ended_ = false;
};

// Runs `body` in a process of its own and returns its result, with "exit N"
// after it if the process did not end well. So a row of a table starts from
// untouched module state.
std::string in_child(const std::function<std::string()>& body);

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
    // The same in the place of an older one: a file that is cut and written anew may wait
    // for the disk, which a fuzzer cannot.
    std::string rewrite(const std::string& name, const std::string& text) const;

private:
    std::string path_;
};

std::string read_text(const std::string& name);
int count_text(const std::string& text, const std::string& part);
