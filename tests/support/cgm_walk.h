// cgm_walk.h: reads a binary metafile element by element, after the headers of
// ISO 8632-3, section 5: class, id, length, partitions, padding.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

inline int cgm_word(const std::string& bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]) << 8 | static_cast<std::uint8_t>(bytes[at + 1]);
}

using CgmPoints = std::vector<std::pair<int, int>>;

struct CgmElement {
    std::pair<int, int> code; // class and id
    std::string data;
    [[nodiscard]] CgmPoints points() const {
        CgmPoints all;
        for (std::size_t i = 0; i + 4 <= data.size(); i += 4)
            all.emplace_back(static_cast<std::int16_t>(cgm_word(data, i)),
                             static_cast<std::int16_t>(cgm_word(data, i + 2)));
        return all;
    }
};

struct CgmFile {
    std::vector<CgmElement> elements;
    std::string fault; // empty: every element is whole
    [[nodiscard]] std::vector<CgmElement> all(std::pair<int, int> code) const {
        std::vector<CgmElement> found;
        for (const CgmElement& element : elements)
            if (element.code == code)
                found.push_back(element);
        return found;
    }
    // Codes of everything but the picture's drawing, as "0,1 1,1 ...".
    [[nodiscard]] std::string frame() const {
        std::string text;
        for (const auto& [code, data] : elements)
            if (code.first < 3)
                text += std::to_string(code.first) + "," + std::to_string(code.second) + " ";
        return text;
    }
};

inline CgmFile read_cgm(const std::string& bytes) {
    CgmFile file;
    std::size_t at = 0;
    const auto word = [&] {
        at += 2;
        return cgm_word(bytes, at - 2);
    };
    while (at < bytes.size()) {
        if (at + 2 > bytes.size())
            return file.fault = "header cut", file;
        const int header = word();
        CgmElement element = {
            {header >> 12, header >> 5 & 0x7f},
            ""
        };
        bool goes_on = (header & 31) == 31;
        std::size_t length = header & 31;
        do {
            if (goes_on) {
                if (at + 2 > bytes.size())
                    return file.fault = "length cut", file;
                const int part = word();
                goes_on = (part & 0x8000) != 0;
                length = part & 0x7fff;
            }
            const std::size_t padded = length + length % 2;
            if (at + padded > bytes.size())
                return file.fault = "element cut", file;
            element.data += bytes.substr(at, length);
            at += padded;
        } while (goes_on);
        file.elements.push_back(std::move(element));
    }
    return file;
}
