// rcm_read: decodes Radar Coded Messages. No state.
#include "rarep.h"

#include <cstring>

int RCM_init(RCM_report* report) {
    *report = RCM_report{};
    std::memset(report->echo, rcm_no_report, sizeof report->echo);
    return 0;
}
