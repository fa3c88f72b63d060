// cdf: netCDF files through libnetcdf, which is loaded on first need. State: the
// library's calls, the bytes of the open files, and the place and range of the
// next reading.
//
// The library is given the bytes in memory, so that pipes and packed files can
// be read, too. What the header of a classic file claims is checked against
// its size first; of netCDF-4 files the library itself checks the sums.
#include "cdf.h"

#include "byte_reader.h"
#include "no_memory.h"
#include "zyr.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::size_t most_bytes = std::size_t{16} << 20;
constexpr std::size_t most_dims = 1024; // of a file, as in the library
constexpr std::size_t most_vars = 8192;
constexpr int global = -1;
constexpr int type_char = 2;
constexpr int memory_error = -61;
constexpr int start_error = -67; // its network part, which nothing but memory is known to stop
constexpr int range_error = -60; // a value is out of the type asked for: it is cut

// Names of the library, newest first.
constexpr const char* library_names[] = {"libnetcdf.so.22", "libnetcdf.so.19", "libnetcdf.so.18"};

// The library's calls; `size` is 8 bytes where it says size_t.
struct Library {
    void* handle = nullptr;
    bool tried = false;
    int (*open)(const char* path, int mode, std::size_t size, void* memory, int* id) = nullptr;
    int (*close)(int id) = nullptr;
    const char* (*error)(int status) = nullptr;
    int (*dim)(int id, const char* name, int* dim) = nullptr;
    int (*dim_size)(int id, int dim, std::size_t* size) = nullptr;
    int (*record_dim)(int id, int* dim) = nullptr;
    int (*var)(int id, const char* name, int* var) = nullptr;
    int (*var_type)(int id, int var, int* type) = nullptr;
    int (*var_ndims)(int id, int var, int* count) = nullptr;
    int (*var_dims)(int id, int var, int* dims) = nullptr;
    int (*att)(int id, int var, const char* name, int* type, std::size_t* size) = nullptr;
    int (*att_text)(int id, int var, const char* name, char* text) = nullptr;
    int (*text)(int id, int var, const std::size_t* start, const std::size_t* count,
                char* out) = nullptr;
    int (*bytes)(int id, int var, const std::size_t* start, const std::size_t* count,
                 signed char* out) = nullptr;
    int (*floats)(int id, int var, const std::size_t* start, const std::size_t* count,
                  float* out) = nullptr;
};

struct OpenFile {
    std::vector<std::uint8_t> bytes;
    std::size_t most_records = 0; // that it has room for
};

using Place = std::array<std::size_t, cdf_max_dims>;

struct State {
    Library lib;
    std::map<int, OpenFile> files; // by the library's number
    int fd = -1;
    bool print = false;
    Place start{};
    Place count{};
};
State state;

// The library's codes do not say so of all that is in it.
void need_memory(int status) {
    if (status == memory_error || status == start_error || errno == ENOMEM) {
        ZYR_no_memory();
    }
}

bool good(const char* call, int status) {
    if (status == 0 || status == range_error) {
        return true;
    }
    need_memory(status);
    if (state.print) {
        MESS_print(mess_warn, "%s: %s\n", call, state.lib.error(status));
    }
    return false;
}

// --- The library ----------------------------------------------------------------

template <typename Call> bool take_call(void* handle, const char* name, Call* call) {
    // A data pointer becomes a function's: POSIX asks for it, the language for a cast.
    *call = reinterpret_cast<Call>(dlsym(handle, name));
    return *call != nullptr;
}

bool take_calls(Library& lib) {
    void* const handle = lib.handle;
    return take_call(handle, "nc_open_mem", &lib.open) &&
           take_call(handle, "nc_close", &lib.close) &&
           take_call(handle, "nc_strerror", &lib.error) &&
           take_call(handle, "nc_inq_dimid", &lib.dim) &&
           take_call(handle, "nc_inq_dimlen", &lib.dim_size) &&
           take_call(handle, "nc_inq_unlimdim", &lib.record_dim) &&
           take_call(handle, "nc_inq_varid", &lib.var) &&
           take_call(handle, "nc_inq_vartype", &lib.var_type) &&
           take_call(handle, "nc_inq_varndims", &lib.var_ndims) &&
           take_call(handle, "nc_inq_vardimid", &lib.var_dims) &&
           take_call(handle, "nc_inq_att", &lib.att) &&
           take_call(handle, "nc_get_att_text", &lib.att_text) &&
           take_call(handle, "nc_get_vara_text", &lib.text) &&
           take_call(handle, "nc_get_vara_schar", &lib.bytes) &&
           take_call(handle, "nc_get_vara_float", &lib.floats);
}

bool load_library() {
    Library& lib = state.lib;
    if (!lib.tried) {
        lib.tried = true;
        errno = 0;
        for (const char* name : library_names) {
            lib.handle = lib.handle != nullptr ? lib.handle : dlopen(name, RTLD_NOW | RTLD_LOCAL);
            if (lib.handle == nullptr) {
                need_memory(0);
            }
        }
        if (lib.handle != nullptr && !take_calls(lib)) {
            lib.handle = nullptr;
        }
    }
    if (lib.handle == nullptr) {
        MESS_print(mess_error, "CDF_open: netCDF files need the library libnetcdf (package "
                               "libnetcdf19 or later), which is not installed\n");
    }
    return lib.handle != nullptr;
}

// --- Headers of classic files -----------------------------------------------------
//
//   bytes       content
//   4           "CDF" and the version: 1, 2 with offsets of 8 bytes, 5 with all
//               counts of 8 bytes
//   count       records; all bits set: not known
//   list        dimensions: name, size, 0 for that of records
//   list        attributes: name, type, count, values
//   list        variables: name, count and numbers of dimensions, attributes,
//               type, size, offset
//
// A list is a tag of 4 bytes and a count; names and values are filled up to a
// multiple of 4 bytes.

constexpr std::size_t type_sizes[] = {0, 1, 1, 2, 4, 4, 8, 1, 2, 4, 8, 8};

class ClassicHeader {
public:
    explicit ClassicHeader(std::span<const std::uint8_t> bytes)
        : bytes_(bytes.size()), begin_(bytes.size()), version_(bytes.size() > 3 ? bytes[3] : 0),
          r_(bytes) {}

    // Whether the lists end within the file, and how many records it has room for.
    bool sound(std::size_t* most_records) {
        r_.skip(4);
        count(); // of records
        const std::size_t dims = list(most_dims);
        for (std::size_t i = 0; i < dims && r_.ok(); ++i) {
            name();
            sizes_.push_back(count());
        }
        attributes();
        const std::size_t vars = list(most_vars);
        for (std::size_t i = 0; i < vars && r_.ok(); ++i) {
            variable();
        }
        // A single variable of records is not filled up.
        const std::size_t record = record_vars_ == 1 ? unpadded_ : record_;
        *most_records = record > 0 ? (bytes_ - begin_) / record : 0;
        return r_.ok() && !broken_;
    }

private:
    std::size_t count() {
        const std::size_t high = version_ == 5 ? r_.u32be() : 0;
        return high << 32U | r_.u32be();
    }
    std::size_t list(std::size_t most) {
        r_.skip(4);
        const std::size_t number = count();
        broken_ = broken_ || number > std::min(most, r_.remaining());
        return broken_ ? 0 : number;
    }
    void padded(std::size_t size) {
        broken_ = broken_ || size > r_.remaining();
        r_.skip(broken_ ? 0 : (size + 3) / 4 * 4);
    }
    void name() { padded(count()); }
    std::size_t type_size() {
        const std::uint32_t type = r_.u32be();
        broken_ = broken_ || type >= std::size(type_sizes);
        return broken_ ? 0 : type_sizes[type];
    }
    void attributes() {
        const std::size_t number = list(most_vars);
        for (std::size_t i = 0; i < number && r_.ok() && !broken_; ++i) {
            name();
            const std::size_t size = type_size();
            const std::size_t values = count();
            broken_ = broken_ || values > r_.remaining();
            padded(broken_ ? 0 : values * size);
        }
    }
    void variable() {
        name();
        const std::size_t dims = count();
        broken_ = broken_ || dims > most_dims;
        bool record = false;
        std::size_t values = 1; // 0: more than the file holds
        for (std::size_t i = 0; i < dims && !broken_ && r_.ok(); ++i) {
            const std::size_t dim = count();
            broken_ = dim >= sizes_.size();
            const std::size_t size = broken_ ? 0 : sizes_[dim];
            record = record || (i == 0 && size == 0);
            if (i > 0 || size > 0) {
                values = size > 0 && values <= bytes_ / size ? values * size : 0;
            }
        }
        attributes();
        const std::size_t one = type_size();
        count(); // its size, which follows from the dimensions
        const std::size_t high = version_ == 1 ? 0 : r_.u32be();
        const std::size_t begin = high << 32U | r_.u32be();
        broken_ = broken_ || (values == 0 && dims > 0);
        if (record) {
            ++record_vars_;
            unpadded_ = values * one;
            record_ += (unpadded_ + 3) / 4 * 4;
            begin_ = std::min(begin_, begin);
        }
    }

    std::size_t bytes_; // of the file
    std::size_t begin_; // of the first record
    int version_;
    ByteReader r_;
    std::vector<std::size_t> sizes_; // of the dimensions
    std::size_t record_ = 0;         // bytes of a record
    std::size_t unpadded_ = 0;       // of these, of the last variable
    int record_vars_ = 0;
    bool broken_ = false;
};

// Reads the rest of a file. False when it is longer than can be a summary.
bool read_all(std::FILE* file, std::vector<std::uint8_t>* bytes) {
    constexpr std::size_t step = 65536;
    std::size_t size = 0;
    for (std::size_t got = 1; got > 0 && size <= most_bytes; size += got) {
        bytes->resize(size + step);
        got = std::fread(bytes->data() + size, 1, step, file);
    }
    bytes->resize(size);
    return size <= most_bytes;
}

bool is_classic(std::span<const std::uint8_t> bytes) {
    return bytes.size() > 3 && bytes[0] == 'C' && bytes[1] == 'D' && bytes[2] == 'F' &&
           (bytes[3] == 1 || bytes[3] == 2 || bytes[3] == 5);
}

// --- Places ------------------------------------------------------------------------

void set_place(Place& place, std::size_t rest, int ndim, std::va_list values) {
    place.fill(rest);
    for (int i = 0; i < ndim && i < cdf_max_dims; ++i) {
        place[static_cast<std::size_t>(i)] =
            static_cast<std::size_t>(std::max(va_arg(values, int), 0));
    }
}

// The count along each dimension of a variable that lies within it. Returns the
// number of values, 0 when there is none or more than `room`.
std::size_t clip(int var, std::size_t room, Place* count) {
    std::array<int, cdf_max_dims> dims{};
    const int number = CDF_get_var_dims(var, dims.data());
    std::size_t values = number < 0 ? 0 : 1;
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(number, 0)); ++i) {
        const long size = CDF_get_dim_size(dims[i]);
        const auto end = static_cast<std::size_t>(std::max(size, 0L));
        const std::size_t left = state.start[i] < end ? end - state.start[i] : 0;
        (*count)[i] = std::min(state.count[i], left);
        values = values <= room ? values * (*count)[i] : 0;
    }
    return values <= room ? values : 0;
}

bool is_text(int var) {
    int type = 0;
    return good("CDF_get_var", state.lib.var_type(state.fd, var, &type)) && type == type_char;
}

bool is_hdf(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view mark = "\x89HDF";
    return bytes.size() > mark.size() &&
           std::equal(mark.begin(), mark.end(), bytes.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

// Whether the library comes back from opening a file. Its HDF5 part frees what it
// never had where a link is damaged: a child meets that first.
bool comes_back(const char* name, std::span<std::uint8_t> bytes) {
    constexpr int back = 77;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO); // the library's last words
        for (const int signal : {SIGABRT, SIGSEGV, SIGBUS}) {
            std::signal(signal, SIG_DFL);
        }
        int fd = -1;
        if (state.lib.open(name, 0, bytes.size(), bytes.data(), &fd) == 0) {
            state.lib.close(fd);
        }
        _exit(back);
    }
    int status = 0;
    return child < 0 || (waitpid(child, &status, 0) == child && WIFEXITED(status) &&
                         WEXITSTATUS(status) == back);
}

} // namespace

int CDF_open(std::FILE* file, const char* name) {
    if (file == nullptr || !load_library()) {
        return -1;
    }
    OpenFile open;
    if (!read_all(file, &open.bytes)) {
        MESS_print(mess_error, "CDF_open: The file is larger than 16 MB: %s\n", name);
        return -1;
    }
    open.most_records = open.bytes.size(); // a record has a byte at least
    if (is_classic(open.bytes) && !ClassicHeader(open.bytes).sound(&open.most_records)) {
        MESS_print(mess_error, "CDF_open: The header is damaged: %s\n", name);
        return -1;
    }
    if (is_hdf(open.bytes) && !comes_back(name, open.bytes)) {
        MESS_print(mess_error, "CDF_open: The file is damaged: %s\n", name);
        return -1;
    }
    int fd = -1;
    const int status =
        state.lib.open(name, 0, open.bytes.size(), static_cast<void*>(open.bytes.data()), &fd);
    if (status != 0) {
        need_memory(status);
        MESS_print(mess_error, "CDF_open: %s: %s\n", state.lib.error(status), name);
        return -1;
    }
    state.files[fd] = std::move(open);
    CDF_set_fd(fd);
    return fd;
}

int CDF_close(int fd) {
    if (state.files.count(fd) == 0) {
        return -1;
    }
    state.lib.close(fd);
    state.files.erase(fd);
    state.fd = fd == state.fd ? -1 : state.fd;
    return 0;
}

void CDF_set_fd(int fd) {
    state.fd = state.files.count(fd) != 0 ? fd : -1;
}

void CDF_print_errors(int val) {
    state.print = val == 1;
}

int CDF_get_dim(const char* name) {
    int dim = -1;
    return state.fd >= 0 && good(name, state.lib.dim(state.fd, name, &dim)) ? dim : -1;
}

int CDF_get_var(const char* name) {
    int var = -1;
    return state.fd >= 0 && good(name, state.lib.var(state.fd, name, &var)) ? var : -1;
}

long CDF_get_dim_size(int dim) {
    int records = -1;
    if (state.fd < 0 || !good("CDF_get_dim_size", state.lib.record_dim(state.fd, &records))) {
        return -1;
    }
    const int asked = dim == -1 ? records : dim;
    std::size_t size = 0;
    if (asked < 0 || !good("CDF_get_dim_size", state.lib.dim_size(state.fd, asked, &size))) {
        return -1;
    }
    // What a header claims is not taken for more than the file has room for.
    const OpenFile& file = state.files[state.fd];
    const std::size_t most = asked == records ? file.most_records : file.bytes.size();
    return static_cast<long>(std::min(size, most));
}

int CDF_get_var_dims(int var, int* dims) {
    int number = 0;
    if (state.fd < 0 || var < 0 ||
        !good("CDF_get_var_dims", state.lib.var_ndims(state.fd, var, &number)) || number < 0 ||
        number > cdf_max_dims ||
        !good("CDF_get_var_dims", state.lib.var_dims(state.fd, var, dims))) {
        return -1;
    }
    return number;
}

int CDF_get_glob_att(const char* name, char* text, std::size_t size) {
    copy_text(text, size, "");
    int type = 0;
    std::size_t length = 0;
    if (state.fd < 0 || !good(name, state.lib.att(state.fd, global, name, &type, &length)) ||
        type != type_char || length > most_bytes) {
        return -1;
    }
    std::string value(length, '\0');
    if (!good(name, state.lib.att_text(state.fd, global, name, value.data()))) {
        return -1;
    }
    copy_text(text, size, value.c_str());
    return 0;
}

void CDF_set_pos(int ndim, ...) {
    std::va_list values;
    va_start(values, ndim);
    set_place(state.start, 0, ndim, values);
    va_end(values);
}

void CDF_set_range(int ndim, ...) {
    std::va_list values;
    va_start(values, ndim);
    set_place(state.count, 1, ndim, values);
    va_end(values);
}

int CDF_get_str(int var, char* text, std::size_t size) {
    copy_text(text, size, "");
    Place count{};
    std::string value(size, '\0');
    if (clip(var, size - 1, &count) == 0 || !is_text(var) ||
        !good("CDF_get_str",
              state.lib.text(state.fd, var, state.start.data(), count.data(), value.data()))) {
        return -1;
    }
    copy_text(text, size, value.c_str());
    return 0;
}

int CDF_get_byte(int var, signed char* value) {
    CDF_set_range(0);
    return CDF_get_byte_array(var, value, 1);
}

int CDF_get_byte_array(int var, signed char* values, std::size_t size) {
    Place count{};
    if (clip(var, size, &count) == 0) {
        return -1;
    }
    const int status =
        is_text(var) ? state.lib.text(state.fd, var, state.start.data(), count.data(),
                                      reinterpret_cast<char*>(values))
                     : state.lib.bytes(state.fd, var, state.start.data(), count.data(), values);
    return good("CDF_get_byte_array", status) ? 0 : -1;
}

int CDF_get_number(int var, float* value) {
    CDF_set_range(0);
    Place count{};
    if (clip(var, 1, &count) == 0 || is_text(var)) {
        return -1;
    }
    float number = 0.0F;
    if (!good("CDF_get_number",
              state.lib.floats(state.fd, var, state.start.data(), count.data(), &number))) {
        return -1;
    }
    *value = number;
    return 0;
}
