// filter_fixture.h: the send filters without a line: fills run one after the other, and an awaited answer
// counts as given as soon as it is awaited.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "dnc/filters.h"
#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer_state.h"

namespace hexlane {

class FilterTest : public ::testing::Test {
protected:
    void SetUp() override {
        set_machine_defaults();
        slot_machine[0] = 0;
        TransferState& t = transfer_state[0];
        reset_transfer(0);
        t.in_comment = t.in_line_number = t.comment_dropped = t.line_has_output = 0;
        t.wait_for_ack = 0;
    }

    MachineParams& machine() { return machine_table[0]; }

    // The bytes of the line for a whole file, one string for each stretch that goes out ahead of an answer.
    std::vector<std::string> send_in_stretches(const std::string& file, bool by_line = false) {
        TransferState& t = transfer_state[0];
        reset_transfer(0);
        port_apply_machine(0, machine());
        t.need_start = 1;
        t.wait_for_ack = 0;
        t.total_bytes = static_cast<int32_t>(file.size());
        std::vector<std::string> stretches(1);
        std::size_t position = 0;
        while (!t.fill_done) {
            if (t.in_index >= t.file_count && !t.last_buffer && t.carry_count == 0) {
                std::size_t size = std::min<std::size_t>(file.size() - position, FILE_BUFFER_SIZE);
                if (by_line)
                    size = std::min(size, file.find('\n', position) - position + 1);
                std::memcpy(transfer_buffers[0].file_buffer, file.data() + position, size);
                position += size;
                t.file_count = static_cast<int32_t>(size);
                t.in_index = 0;
                t.last_buffer = position == file.size();
            }
            t.fill_done = static_cast<int16_t>(by_line ? fill_from_line(0) : fill_from_buffer(0));
            EXPECT_LE(t.out_count, OUTPUT_BUFFER_SIZE);
            stretches.back().append(reinterpret_cast<char*>(transfer_buffers[0].output_buffer),
                                    static_cast<std::size_t>(t.out_count));
            if (t.wait_for_ack && t.carry_count == 0) {
                t.wait_for_ack = 0;
                stretches.emplace_back();
            }
        }
        return stretches;
    }

    std::string send(const std::string& file, bool by_line = false) {
        std::string all;
        for (const std::string& stretch : send_in_stretches(file, by_line))
            all += stretch;
        return all;
    }

    std::string receive(const std::string& line) {
        port_apply_machine(0, machine());
        const int stored =
            receive_filter(static_cast<int>(line.size()), reinterpret_cast<const uint8_t*>(line.data()), 0);
        return {reinterpret_cast<char*>(transfer_buffers[0].file_buffer), static_cast<std::size_t>(stored)};
    }
};

}  // namespace hexlane
