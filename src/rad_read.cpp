// rad_read: files of radar summaries, whatever their kind: texts (rad_text) and
// netCDF (rad_cdf). State: the open file and, of netCDF, the number of the next
// report.
#include "rad_read.h"

#include "cdf.h"
#include "data_file.h"
#include "date.h"
#include "file_kind.h"
#include "files.h"
#include "state_keeper.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace {

constexpr int text_fd = 1; // the number of an open text
constexpr std::string_view magic = "ZYRRAD";

struct State {
    int fd = -1;
    int file_type = 0;
    int stat_num = 0;     // the next report of a netCDF file
    long num_station = 0; // its reports
    std::array<std::uint8_t, 512> head{};
    std::size_t head_size = 0;
    bool looked = false; // the head is that of a file that opened
};
State state;

bool is_text_type(int type) {
    return type >= rad_type_raw && type <= rad_type_zyrrad;
}

// Type of a text by its first bytes; `rad_type_report` for netCDF, -1 for neither.
int type_of(std::string_view head) {
    if (head.empty()) {
        return -1;
    }
    if (head.starts_with("CDF") || head.starts_with("\211HDF")) {
        return rad_type_report;
    }
    switch (head[0]) {
    case '*':
        return rad_type_raw;
    case ' ':
    case '0':
    case '1':
    case '2':
        return rad_type_text;
    case 'W':
        return rad_type_zyrrad;
    default:
        return head.starts_with(magic) ? rad_type_zyrrad : -1;
    }
}

// The same of an open file; a netCDF file stays open as `*fd`.
int find_type(std::FILE* file, const char* name, int* fd) {
    const auto head = FILE_head(file, state.head);
    state.head_size = head.size();
    state.looked = true;
    const int type = type_of({reinterpret_cast<const char*>(head.data()), head.size()});
    if (type != rad_type_report) {
        return type;
    }
    *fd = CDF_open(file, name);
    if (*fd < 0) {
        return -1;
    }
    CDF_print_errors(0);
    return CDF_get_dim("station") >= 0 ? rad_type_station : rad_type_report;
}

void empty(RAD_info* info) {
    std::memset(info->summary, 0, sizeof info->summary);
    info->datim[0] = '\0';
    info->cmdline = nullptr;
    info->date = {};
    info->type = missing;
}

} // namespace

int RAD_chktype(const char* filename) {
    const FILE_ptr file(FILE_open_data(filename));
    int fd = -1;
    const int type = file != nullptr ? find_type(file.get(), filename, &fd) : -1;
    CDF_close(fd);
    return type;
}

int RAD_open(const char* filename, int f_access, int* f_type) {
    state.looked = false;
    const FILE_ptr file(f_access == 0 ? FILE_open_data(filename) : nullptr);
    if (file == nullptr) {
        return -1;
    }
    int fd = -1;
    const int type = find_type(file.get(), filename, &fd);
    // The user's type chooses among texts: what is netCDF says so itself.
    const bool given = is_text_type(*f_type) && is_text_type(type);
    *f_type = given ? *f_type : type;
    if (type < 0) {
        return -1;
    }
    if (state.fd >= 0) {
        RAD_close(state.fd);
    }
    if (is_text_type(type) && !rad_text_take(file.get(), filename, *f_type)) {
        return -1;
    }
    state.file_type = *f_type;
    state.fd = is_text_type(type) ? text_fd : fd;
    return state.fd;
}

void RAD_tell_kind(const char* routine) {
    if (state.looked) {
        tell_file_kind(routine, std::span(state.head).first(state.head_size));
    }
}

int RAD_getinfo(int cvt_fd, RAD_info* info) {
    empty(info);
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    return is_text_type(state.file_type)
               ? rad_text_info(info)
               : rad_cdf_info(state.fd, state.file_type, info, &state.num_station);
}

int RAD_rewind(int cvt_fd) {
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    state.stat_num = 0;
    if (is_text_type(state.file_type)) {
        rad_text_rewind();
    }
    return 0;
}

int RAD_close(int cvt_fd) {
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    if (is_text_type(state.file_type)) {
        rad_text_forget();
    } else {
        CDF_close(state.fd);
    }
    state = {};
    return 0;
}

int MDR_read(int cvt_fd, MDR_report* report, int rep_type, const int* statnum) {
    *report = {};
    if (cvt_fd < 0 || cvt_fd != state.fd) {
        return -1;
    }
    if (is_text_type(state.file_type)) {
        return rad_text_report(report, rep_type, statnum);
    }
    const int n = statnum != nullptr && *statnum != -1 ? *statnum : state.stat_num;
    if (n < 0 || n >= state.num_station) {
        return -1;
    }
    state.stat_num = n + 1;
    rad_cdf_report(state.fd, state.file_type, report, rep_type, n);
    return 0;
}

int RCM_read(int cvt_fd, RCM_report* report, int rep_type, const int*) {
    RCM_init(report);
    const bool open = cvt_fd >= 0 && cvt_fd == state.fd && is_text_type(state.file_type);
    return open ? rad_text_message(report, rep_type) : -1;
}

void keep_rad_read(StateKeeper& keeper) {
    keeper.keep(state);
}
