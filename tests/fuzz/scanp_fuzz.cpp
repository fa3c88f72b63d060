// The format scanner: the first line of the input is the format, the rest the
// text. Every argument is a buffer large enough for any conversion.
#include "scanp.h"

#include "zyr.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t most_directives = 16;
    struct alignas(8) Argument {
        char bytes[80];
    };
    MESS_set(0, 0);
    const std::string input(data, data + size);
    const std::size_t line = std::min(input.find('\n'), size);
    const std::string format = input.substr(0, line);
    std::string text = line < size ? input.substr(line + 1) : "";
    std::size_t directives = 0;
    for (const char c : format) {
        directives += c == '%' ? 1 : 0;
    }
    if (directives > most_directives) {
        return 0;
    }
    Argument a[most_directives];
    parse_param param;
    scanp_set(&param, text.data());
    for (int i = 0; i < 100; ++i) {
        const int matched =
            scanp(&param, format.c_str(), &a[0], &a[1], &a[2], &a[3], &a[4], &a[5], &a[6], &a[7],
                  &a[8], &a[9], &a[10], &a[11], &a[12], &a[13], &a[14], &a[15]);
        if (matched < 0 || param.len == 0) {
            break;
        }
        scanp_replace(&param, '_', scanp_char(&param, -1));
        if (scanp_char(&param, 0) != *scanp_str(&param)) {
            std::abort();
        }
        scanp_inc(&param);
    }
    return 0;
}
