// gks_attr: plays recorded attributes: from a record of the redraw list or from the
// words and numbers of a metafile to the setter. No state.

#include "gks_attr.h"

#include <algorithm>
#include <cstring>

namespace {

// Calls a setter with the values of a record.
struct Play {
    const Gvalues& v;
    int operator()(Gset_number* set) const { return set(v.n[0]); }
    int operator()(Gset_real* set) const { return set(v.f[0]); }
    int operator()(Gset_point* set) const {
        const Gpt pt = {v.f[0], v.f[1]};
        return set(&pt);
    }
    int operator()(Gset_font* set) const {
        const Gfontprec font = {v.n[0], static_cast<Gtext_prec>(v.n[1])};
        return set(&font);
    }
    int operator()(Gset_align* set) const {
        const Gtext_align align = {static_cast<Gtext_hor>(v.n[0]), static_cast<Gtext_ver>(v.n[1])};
        return set(&align);
    }
    int operator()(Gset_limits* set) const {
        const Glim lim = {v.f[0], v.f[2], v.f[1], v.f[3]};
        return set(v.n[0], &lim);
    }
    int operator()(Gset_color* set) const {
        const Gcolr_rep rep = {v.f[0], v.f[1], v.f[2]};
        return set(gget_ws_id(), v.n[1], &rep);
    }
};

// Plays a record of the list, whose data was copied byte by byte.
struct PlayRecord {
    const drawobj& record;
    template <typename T> T data() const {
        T value{};
        if (record.data != nullptr) {
            std::memcpy(&value, record.data, sizeof value);
        }
        return value;
    }
    int operator()(Gset_number* set) const { return set(record.values); }
    int operator()(Gset_real* set) const { return set(data<float>()); }
    int operator()(Gset_point* set) const { return with<Gpt>(set); }
    int operator()(Gset_font* set) const { return with<Gfontprec>(set); }
    int operator()(Gset_align* set) const { return with<Gtext_align>(set); }
    int operator()(Gset_limits* set) const {
        const auto lim = data<Glim>();
        return set(record.values, &lim);
    }
    int operator()(Gset_color* set) const {
        const auto rep = data<Gcolr_rep>();
        return set(gget_ws_id(), record.values, &rep);
    }

private:
    template <typename T> int with(int (*set)(const T*)) const {
        const T value = data<T>();
        return set(&value);
    }
};

} // namespace

const Gattribute* gfind_attribute(int code) {
    const auto* row = std::find_if(gattributes.begin(), gattributes.end(),
                                   [&](const Gattribute& a) { return a.code == code; });
    return row != gattributes.end() ? row : nullptr;
}

const Gattribute* gfind_attribute(std::string_view word) {
    const auto* row =
        std::find_if(gattributes.begin(), gattributes.end(), [&](const Gattribute& a) {
            return a.read != Gread::unknown && a.word == word;
        });
    return row != gattributes.end() ? row : nullptr;
}

int gplay_attribute(const Gattribute& attribute, const Gvalues& values) {
    return std::visit(Play{values}, attribute.set);
}

int gplay_record(const Gattribute& attribute, const drawobj& record) {
    if (record.data == nullptr && !std::holds_alternative<Gset_number*>(attribute.set)) {
        return -1;
    }
    return std::visit(PlayRecord{record}, attribute.set);
}
