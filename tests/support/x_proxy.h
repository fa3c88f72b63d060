// x_proxy.h: stands between the program and an X server, and counts what the
// program waits for: the server's replies.
#pragma once

#include <string>

class XServer;

// Takes one connection and passes everything on. Ends with the object.
class XProxy {
public:
    explicit XProxy(const XServer& server);
    ~XProxy();
    XProxy(const XProxy&) = delete;
    XProxy& operator=(const XProxy&) = delete;

    const std::string& name() const { return name_; } // of the display it stands for
    int replies() const { return *replies_; }         // so far

private:
    int pid_ = -1;
    int* replies_ = nullptr; // shared with the process that counts
    std::string name_;
};
