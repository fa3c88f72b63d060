// name_find: looks up the files that fit an open template, one with "%*". No state.
#include "name_find.h"

#include "date.h"
#include "files.h"
#include "no_memory.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <tuple>
#include <utility>

#include <glob.h>

namespace {

struct GlobCloser {
    void operator()(glob_t* paths) const { globfree(paths); }
};

// A directory that cannot be read has no file, unless memory has run out.
extern "C" int is_fatal(const char* /*path*/, int error) {
    return error == ENOMEM ? 1 : 0;
}

// A date typed by nobody: what the name says alone.
Date date_of_name(const NameSource& source, const std::string& name) {
    NameSource plain = source;
    plain.set = {};
    return match_name(plain, name.c_str()).date;
}

// What orders two files of a radar whose templates say the same minute: the
// names from their first digits of a date on.
std::string tail_of(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    const std::size_t from = slash == std::string::npos ? 0 : slash + 1;
    for (std::size_t i = from; i + 4 <= name.size(); ++i) {
        if (name.find_first_not_of("0123456789", i) >= i + 4) {
            return name.substr(i);
        }
    }
    return name.substr(from);
}

} // namespace

std::vector<FoundName> find_names(const NameSource& source, const Date& date) {
    NameSource pattern_source = source;
    pattern_source.glob = true;
    const NameResult pattern = build_name(pattern_source, date, {});
    glob_t area{};
    std::vector<FoundName> found;
    const int status =
        pattern.cut ? GLOB_NOMATCH : glob(pattern.name, GLOB_NOSORT | GLOB_TILDE, is_fatal, &area);
    if (status == GLOB_NOSPACE || status == GLOB_ABORTED) {
        ZYR_no_memory();
    }
    if (status != 0) {
        return found;
    }
    const std::unique_ptr<glob_t, GlobCloser> paths(&area);
    for (std::size_t i = 0; i < paths->gl_pathc; ++i) {
        std::string name = paths->gl_pathv[i];
        if (name.size() < file_name_size && FILE_is_dir(name.c_str()) == 0) {
            const Date own = date_of_name(source, name);
            found.push_back({std::move(name), own});
        }
    }
    const auto order = [](const FoundName& one) {
        const Date& d = one.date;
        return std::make_tuple(d.year, d.month, d.day, d.hour, d.min, tail_of(one.name), one.name);
    };
    std::sort(found.begin(), found.end(),
              [&](const FoundName& a, const FoundName& b) { return order(a) > order(b); });
    return found;
}
