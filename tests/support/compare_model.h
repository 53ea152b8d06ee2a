// compare_model.h: the compare's steps one by one over whole files in memory, with every compare of two rows
// done afresh, for tests and fuzzers to set the engine against.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>

#include "compare/compare.h"
#include "compare/compare_record_format.h"

namespace hexlane {

class CompareModel {
public:
    struct Record {
        char kind = 0;
        int64_t left = 0;
        int64_t right = 0;
    };

    CompareModel(const std::string& left_bytes, const std::string& right_bytes, int look_ahead_rows,
                 bool ignore)
        : left{left_bytes}, right{right_bytes}, look_ahead(look_ahead_rows), ignore_spaces(ignore) {
        while (!finished) {
            if (left.ended || right.ended)
                break;
            turn();
        }
        finish();
    }

    std::map<int64_t, Record> records;  // those behind `last` are left over
    std::map<char, int64_t> stores;     // how often each kind was stored
    int64_t last = -1;
    int64_t left_last = -1;
    int64_t right_last = -1;

private:
    struct Side {
        const std::string bytes;
        bool ended = false;
        int64_t size() const { return static_cast<int64_t>(bytes.size()); }
        int at(int64_t place) const {
            return place < size() ? static_cast<unsigned char>(bytes[static_cast<size_t>(place)]) : -1;
        }
        // The LF at or behind `place`, or the last byte.
        int64_t row_end(int64_t place) const {
            while (place < size() - 1 && at(place) != '\n')
                place++;
            return place;
        }
        void note(int64_t place) { ended = ended || place >= size() - 1; }
    };

    static bool is_space(int byte) { return byte == ' ' || byte == '\t'; }

    void store(int64_t number, char kind) {
        records[number].kind = kind;
        stores[kind]++;
    }

    bool compare_rows(int64_t a, int64_t b) {
        matched = false;
        int64_t p1 = records[a].left;
        int64_t p2 = records[b].right;
        behind_both = p1 >= left.size() && p2 >= right.size();
        bool equal = true;
        for (int steps = 1;; steps++) {
            while (ignore_spaces && is_space(left.at(p1)))
                p1++;
            while (ignore_spaces && is_space(right.at(p2)))
                p2++;
            const bool no_row = records[a].left >= left.size() || records[b].right >= right.size();
            equal = left.at(p1) == right.at(p2) && !no_row;
            const bool row_ends = left.at(p1) == '\n' || left.at(p1) < 0;
            if (equal && row_ends &&
                !(steps == 2 && left.at(p1) == '\n' && left.at(p1 - 1) == '\r' && !previous_matched)) {
                matched = true;
                previous_matched = true;
            }
            if (!equal || row_ends)
                break;
            p1++;
            p2++;
        }
        if (!equal) {
            p1 = left.row_end(p1);
            p2 = right.row_end(p2);
            previous_matched = behind_both && previous_matched;
        }
        matched = matched || behind_both;
        records[a + 1].left = std::min(p1 + 1, left.size());
        records[b + 1].right = std::min(p2 + 1, right.size());
        left.note(p1);
        right.note(p2);
        return matched;
    }

    void store_match() {
        phantom = behind_both;
        if (!phantom)
            store(index, 'S');
    }

    void next_step() {
        if (left.ended || right.ended) {
            finished = true;
            return;
        }
        index++;
        sync_base = index;
    }

    bool scan_a() {
        int64_t k = 0;
        while (k <= pending && !compare_rows(sync_base + k, index))
            k++;
        if (k > pending)
            return false;
        records[index + 1].left = records[sync_base + k + 1].left;
        records[index].left = records[sync_base + k].left;
        store_match();
        for (; k > 0; k--) {
            store(index - pending, 'M');
            records[index - pending].left = records[sync_base].left;
            pending--;
            sync_base++;
        }
        for (; pending > 0; pending--) {
            store(index - pending, 'I');
            records[index - pending].left = records[sync_base].left;
        }
        return true;
    }

    bool scan_b() {
        int64_t k = 0;
        while (k < pending && !compare_rows(index, sync_base + k))
            k++;
        if (k == pending)
            return false;
        records[index + 1].right = records[sync_base + k + 1].right;
        records[index].right = records[sync_base + k].right;
        store_match();
        for (; k > 0; k--) {
            records[index - pending].right = records[sync_base].right;
            store(index - pending, 'M');
            pending--;
            sync_base++;
        }
        for (; pending > 0; pending--) {
            records[index - pending].right = records[sync_base].right;
            store(index - pending, 'D');
        }
        return true;
    }

    void turn() {
        if (compare_rows(index, index)) {
            store_match();
            for (; pending > 0; pending--)
                store(index - pending, 'M');
            next_step();
            return;
        }
        index++;
        pending++;
        if (scan_a()) {
            next_step();
            return;
        }
        if (left.ended || right.ended) {
            finished = true;
            return;
        }
        if (scan_b()) {
            next_step();
            return;
        }
        if (pending > look_ahead) {
            pending = 0;
            store(sync_base, 'M');
            index = sync_base + 1;
            sync_base = index;
        }
    }

    void finish() {
        if (phantom)
            index--;
        else if (left.ended && right.ended)
            store(index, matched ? 'S' : 'M');
        for (int64_t back = pending; pending > 0 && back >= 0; back--)
            store(index - back, 'M');
        int64_t p1 = index < 0 ? 0 : records[index].left;
        int64_t p2 = index < 0 ? 0 : records[index].right;
        left_last = right_last = index;
        for (; !left.ended; left_last++) {
            p1 = left.row_end(p1) + 1;
            if (p1 >= left.size())
                break;
            store(++index, 'D');
            records[index].left = p1;
            records[index].right = right.size();
        }
        for (; !right.ended; right_last++) {
            p2 = right.row_end(p2) + 1;
            if (p2 >= right.size())
                break;
            store(++index, 'I');
            records[index].right = p2;
            records[index].left = left.size();
        }
        last = index;
    }

    Side left;
    Side right;
    int look_ahead;
    bool ignore_spaces;
    int64_t index = 0;
    int64_t sync_base = 0;
    int64_t pending = 0;
    bool matched = false;
    bool behind_both = false;  // the last compare was of two places behind the ends
    bool phantom = false;      // such a pair would be the record `index`
    bool previous_matched = true;
    bool finished = false;
};

// What the engine's list has otherwise than the steps give; empty for nothing.
inline std::string difference_from(const CompareModel& model) {
    if (compare.last_record != model.last || compare.left.last_record != model.left_last ||
        compare.right.last_record != model.right_last)
        return "the list or a side of it ends in another record";
    const auto stored = [&model](char kind) {
        const auto found = model.stores.find(kind);
        return found == model.stores.end() ? 0 : found->second;
    };
    if (compare.matches != stored('S') || compare.mods != stored('M') || compare.inserts != stored('I') ||
        compare.deletes != stored('D'))
        return "the counters are not those of the stores";
    for (int64_t number = 0; number <= model.last; number++) {
        CompareRecord record;
        const CompareModel::Record& wanted = model.records.at(number);
        if (!load_record(number, &record) || record.kind != wanted.kind ||
            record.left_offset != wanted.left || record.right_offset != wanted.right)
            return "record " + std::to_string(number) + " is another or cannot be read";
    }
    return "";
}

}  // namespace hexlane
