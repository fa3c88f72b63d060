// The template language: lines of the input are a template, a typed name, the
// digits of a date, an extension and an input's name. Names are matched, built and
// listed.
#include "date.h"
#include "name_tmpl.h"

#include "zyr.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

const char* resource(const char* name) {
    return std::strlen(name) % 3 == 0 ? nullptr : "~a'b;$dir/";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    std::istringstream input(std::string(data, data + size));
    std::string conv;
    std::string typed;
    std::string digits;
    std::string ext;
    std::string file;
    std::getline(input, conv);
    std::getline(input, typed);
    std::getline(input, digits);
    std::getline(input, ext);
    std::getline(input, file);
    NameKeys keys;
    copy_text(keys.file, sizeof keys.file, file.c_str());
    constexpr std::size_t site = 's';
    copy_text(keys.text[site], sizeof keys.text[site], "KTLX");
    NameSource source;
    source.conv = conv.c_str();
    source.keys = &keys;
    source.ext = ext.c_str();
    source.resource = resource;
    DATE_decode_seq(digits.c_str(), &source.set);
    if (size % 2 == 0) { // steps in place of values
        source.set.day = -source.set.day;
        source.set.hour = -source.set.hour;
        source.set.min = -source.set.min;
    }
    const NameResult result = match_name(source, typed.c_str());
    const std::string path = path_of_name(conv.c_str(), result.name);
    source.path = path.c_str();
    source.glob = digits.size() % 2 != 0;
    const NameResult built = build_name(source, result.date, Date{});
    source.glob = false;
    if (std::strlen(built.name) >= file_name_size || std::strlen(result.name) >= file_name_size) {
        std::abort();
    }
    // Outside quotes a list holds globs, and a home directory at its front.
    bool quoted = false;
    const std::string list = list_pattern(source);
    for (std::size_t i = 0; i < list.size(); ++i) {
        const char c = list[i];
        if (c == '\'') {
            quoted = !quoted;
        } else if (!quoted && c == '\\' && list[i + 1] == '\'') {
            ++i; // a quote of the text
        } else if (!quoted && std::strchr("?*[]-", c) == nullptr &&
                   std::isalnum(static_cast<unsigned char>(c)) == 0 && (c != '~' || i > 0)) {
            std::abort();
        }
    }
    if (quoted) {
        std::abort();
    }
    return 0;
}
