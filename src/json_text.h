// json_text.h: facts as texts of JSON, for programs that read what a run says.
#pragma once

#include "zyr.h"

#include <string>
#include <string_view>

// "2013-05-20T20:16:34Z", as far as it is known; empty without a year.
std::string iso_time(const Date& date);
std::string json_number(double value, int decimals);
// Whether a value has a number.
bool json_is_known(float value);
// A JSON string: control characters and bytes beyond ASCII are written as escapes, so
// that any bytes are read again.
std::string json_quoted(std::string_view text);

// An object; members that are not known are left out.
class JsonObject {
public:
    void text(const char* key, std::string_view value) {
        if (!value.empty()) {
            raw(key, json_quoted(value));
        }
    }
    void count(const char* key, long value) {
        if (value != missing) {
            raw(key, std::to_string(value));
        }
    }
    void real(const char* key, float value, int decimals) {
        if (json_is_known(value)) {
            raw(key, json_number(static_cast<double>(value), decimals));
        }
    }
    void raw(const char* key, const std::string& value) {
        body_ += (body_.empty() ? "" : ", ") + json_quoted(key) + ": " + value;
    }
    [[nodiscard]] std::string str() const { return "{" + body_ + "}"; }

private:
    std::string body_;
};
