// record.cpp: writing the record of a run, and the names of its places.

#include "platform/scripted/record.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace hexlane::platform {

namespace {

struct Place {
    std::string name;
    std::string path;
};

bool printed = false;
std::vector<std::string>* aside = nullptr;
std::vector<std::string> kept;
std::vector<Place> places;  // longest path first
const char* (*prefix_source)() = nullptr;
void (*stop_handler)(const std::string& reason) = nullptr;

bool is_name_byte(char byte) {
    const unsigned char b = static_cast<unsigned char>(byte);
    return (b >= '0' && b <= '9') || (b >= 'A' && b <= 'Z') || (b >= 'a' && b <= 'z') || b >= 0x80 ||
           b == '_' || b == '-' || b == '.';
}

// Whether `part` stands at `at` and ends there with a whole path part.
bool path_stands_at(std::string_view text, std::size_t at, const std::string& part) {
    if (part.empty() || text.substr(at, part.size()) != part) {
        return false;
    }
    const std::size_t end = at + part.size();
    return (end == text.size() || !is_name_byte(text[end])) && (at == 0 || !is_name_byte(text[at - 1]));
}

}  // namespace

void record_line(const std::string& line) {
    if (aside != nullptr || !printed) {
        (aside != nullptr ? *aside : kept).push_back(line);
        return;
    }
    std::fputs(line.c_str(), stdout);
    std::fputc('\n', stdout);
}

// Line by line, so that a run that crashes, hangs or is ended by a fault has told everything up to there.
void print_record() {
    printed = true;
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

bool record_is_printed() {
    return printed;
}

std::vector<std::string> record_aside(const std::function<void()>& act) {
    std::vector<std::string> lines;
    aside = &lines;
    act();
    aside = nullptr;
    return lines;
}

std::vector<std::string>& kept_lines() {
    return kept;
}

std::string printable(std::string_view text) {
    std::string out;
    for (const char byte : text) {
        const unsigned b = static_cast<unsigned char>(byte);
        if (b < 0x20 || b > 0x7E) {
            constexpr char DIGITS[] = "0123456789ABCDEF";
            out += {'\\', 'x', DIGITS[b >> 4], DIGITS[b & 15]};
        } else {
            out += byte;
        }
    }
    return out;
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char byte : text) {
        out += byte == '\\' ? "\\\\" : printable(std::string_view(&byte, 1));
    }
    return out;
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char byte : escaped(with_place_names(text))) {
        if (byte == '"') {
            out += '\\';
        }
        out += byte;
    }
    return out + '"';
}

void name_place(const char* name, const std::string& path) {
    std::erase_if(places, [name](const Place& place) { return place.name == name; });
    if (path.size() > 1) {  // the root would name every path
        places.push_back({name, path});
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const Place& a, const Place& b) { return a.path.size() > b.path.size(); });
}

std::string with_place_names(std::string_view text) {
    const std::string prefix = prefix_source != nullptr ? prefix_source() : "";
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const auto place = std::find_if(places.begin(), places.end(), [&](const Place& candidate) {
            return path_stands_at(text, at, candidate.path);
        });
        if (place != places.end()) {
            out += place->name;
            at += place->path.size();
        } else if (!prefix.empty() && (at == 0 || text[at - 1] == '/') &&
                   text.substr(at, prefix.size()) == prefix) {
            out += "$PREFIX";
            at += prefix.size();
        } else {
            out += text[at++];
        }
    }
    return out;
}

std::string without_place_name(const std::string& path) {
    for (const Place& place : places) {
        if (path_stands_at(path, 0, place.name)) {
            return place.path + path.substr(place.name.size());
        }
    }
    return path;
}

void set_prefix_source(const char* (*prefix)()) {
    prefix_source = prefix;
}

void stop_run(const std::string& reason) {
    aside = nullptr;
    if (stop_handler != nullptr) {
        stop_handler(reason);
    }
    std::fprintf(stderr, "scripted desktop: %s\n", reason.c_str());
    std::abort();
}

void set_stop_handler(void (*handler)(const std::string& reason)) {
    stop_handler = handler;
}

}  // namespace hexlane::platform
