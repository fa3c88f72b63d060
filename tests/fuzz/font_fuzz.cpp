// Font files: any text is refused or gives glyphs that can be walked.

#include "gks_font.h"
#include "zyr.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MESS_set(0, 0);
    static Gfont font;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const int status = gparse_font(text, &font);
    for (int place : font.index) {
        if (place >= 0 && status != 0) {
            std::abort(); // a refused font has no glyphs
        }
        Gstroke stroke{};
        while (gnext_stroke(font, &place, &stroke)) {
            if (stroke.x < 0 || stroke.x > 127) {
                std::abort();
            }
        }
    }
    return 0;
}
