// fast_clock.cpp: a library to preload. The steady clock of the program goes sixty
// times as fast, so that what comes every minute comes every second.
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

extern "C" int clock_gettime(clockid_t id, timespec* time) noexcept {
    const auto result = static_cast<int>(syscall(SYS_clock_gettime, id, time));
    if (result == 0 && id == CLOCK_MONOTONIC) {
        constexpr long second = 1000000000L;
        const long ahead = time->tv_nsec * 60;
        time->tv_sec = time->tv_sec * 60 + ahead / second;
        time->tv_nsec = ahead % second;
    }
    return result;
}
