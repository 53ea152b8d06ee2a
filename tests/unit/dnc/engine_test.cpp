// Port engine and transfers on the scripted line: every protocol with its answers, the starts, the ends, and
// a machine that stops, answers early, or goes away. All on the scripted clock.

#include <chrono>
#include <filesystem>
#include <random>

#include "dnc/crc32.h"
#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/received_file.h"
#include "dnc/transfer.h"
#include "platform/posix/file_faults.h"
#include "platform/scripted/line_hooks.h"
#include "platform/scripted/test_hooks.h"
#include "platform/scripted/workers.h"
#include "shell/child.h"
#include "shell/ui_timer.h"
#include "station/port_report.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;
using namespace std::string_literals;

constexpr int LONG = 3600 * 1000;  // ms

class EngineTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        for (int slot = 0; slot < SLOT_COUNT; slot++) {
            transfer_state[slot].status = PORT_IDLE;
            transfer_state[slot].fault = TransferFault::NONE;
            transfer_state[slot].in_comment = transfer_state[slot].in_line_number = 0;
            transfer_state[slot].comment_dropped = transfer_state[slot].line_has_output = 0;
            reset_transfer(slot);
        }
        start("");
        set_machine_defaults();
        slot_machine[0] = 0;
        slot_machine[1] = 1;
        machine_table[1].port_index = 1;
        machine().stop_bits_index = 0;
    }

    void TearDown() override {
        for (int slot = 0; slot < SLOT_COUNT; slot++)
            port_close(slot);
        stop_ui_timer();
        ProgramTest::TearDown();
    }

    static MachineParams& machine(int slot = 0) { return machine_table[slot]; }

    static void open_line(int slot = 0) {
        ASSERT_EQ(port_init(slot, machine(slot)), 1);
        ASSERT_EQ(port_open(slot), 1);
    }

    // What the activity screen does behind Send Properties.
    void begin_send(const std::string& name, bool now, int slot = 0, int32_t offset = 0) {
        TransferState& t = transfer_state[slot];
        send_now = now;
        t.start_now = now;
        copy_text(t.file_name, PATH_SIZE, path(name).c_str());
        t.total_bytes = 1;  // of an earlier send
        t.start_offset = offset;
        t.file_position = offset;
        t.status = SEND_STANDBY;
        open_line(slot);
        ASSERT_EQ(prepare_send(slot), 1);
        set_ui_timer(UI_TIMER_SLOW);
    }

    void begin_receive(const std::string& name, int slot = 0) {
        copy_text(transfer_state[slot].file_name, PATH_SIZE, path(name).c_str());
        open_line(slot);
        ASSERT_EQ(prepare_receive(slot), 1);
        set_ui_timer(UI_TIMER_SLOW);
    }

    // Runs until the slot's port is closed again.
    static bool ended(int slot = 0, int limit_ms = LONG) {
        return advance_until([slot] { return !port_slot[slot].connected; }, limit_ms);
    }

    static std::string last_box() { return shown_boxes().empty() ? "" : shown_boxes().back().text; }

    static std::string program(int rows) {
        std::string text;
        for (int row = 0; row < rows; row++)
            text += "N" + std::to_string(row) + " G1 X" + std::to_string(row * 37 % 911) + "\r\n";
        return text;
    }

    // A machine that answers each block; ETB ends one, in HEIDENHAIN with the check behind it.
    static void answer_blocks(int after_etb, int64_t delay_us = 0) {
        auto waiting = std::make_shared<int>(-1);
        play_machine(1, [=](uint8_t byte) {
            if (*waiting > 0 && --*waiting == 0)
                feed_line(1, "\x06", delay_us);
            if (byte == ETB && *waiting <= 0) {
                *waiting = after_etb;
                if (after_etb == 0)
                    feed_line(1, "\x06", delay_us);
            }
        });
    }
};

TEST_F(EngineTest, AGeneralSendGoesOutWholeAndIsTold) {
    const std::string file = program(2000);  // several buffers
    write("part.nc", file);
    answer_box("OK");
    begin_send("part.nc", true);
    ASSERT_TRUE(ended());
    EXPECT_EQ(take_sent(1), file);
    EXPECT_EQ(last_box(), "File Transmission Complete.");
    EXPECT_EQ(transfer_state[0].status, SEND_DONE);
    EXPECT_EQ(transfer_state[0].tally.file_bytes, static_cast<int64_t>(file.size()));
    EXPECT_EQ(bytes("part.nc"), file);
}

// A NUL ends a piece and does not go out, but it is a byte of the file.
TEST_F(EngineTest, LineByLineCountsTheFilesBytesWithTheirNuls) {
    const std::string nuls(300, '\0');
    const std::string file = nuls + "N1\0X1\r\n"s + std::string(256, 'L') + "\0\r\n"s + nuls +
                             std::string(700, 'M') + "\r\n\r\nM30" + nuls;
    write("part.nc", file);
    machine().eob_delay_ms = 30;
    answer_box("OK");
    begin_send("part.nc", true);
    ASSERT_TRUE(ended());
    EXPECT_EQ(take_sent(1),
              "N1X1\r\n" + std::string(256, 'L') + "\r\n" + std::string(700, 'M') + "\r\n\r\nM30");
    EXPECT_EQ(transfer_state[0].tally.file_bytes, static_cast<int64_t>(file.size()));
    EXPECT_EQ(transfer_state[0].tally.file_crc, crc32(0, file.data(), file.size()));
}

TEST_F(EngineTest, BlockProtocolsWaitForEachAnswer) {
    const std::string file = program(60);
    for (const int protocol : {PROTOCOL_BRIDGEPORT, PROTOCOL_HEIDENHAIN}) {
        for (const int64_t delay_us : {0, 50000}) {
            SCOPED_TRACE(std::to_string(protocol) + " " + std::to_string(delay_us));
            begin_anew();
            const bool bridgeport = protocol == PROTOCOL_BRIDGEPORT;
            write("part.nc", file);
            machine().protocol = protocol;
            answer_blocks(bridgeport ? 0 : 2, delay_us);
            answer_box("OK");
            begin_send("part.nc", true);
            ASSERT_TRUE(ended());
            std::string data = take_sent(1);
            std::erase(data, ETB);
            if (bridgeport) {
                EXPECT_EQ(data.substr(0, file.size()), file);
            }
            EXPECT_EQ(last_box(), "File Transmission Complete.");
            EXPECT_EQ(transfer_state[0].tally.acks,
                      bridgeport ? static_cast<int>(file.size()) / BRIDGEPORT_BLOCK : 60);
        }
    }
}

TEST_F(EngineTest, NothingGoesOutBeforeTheAnswerAndABlockGoesOnce) {
    write("part.nc", "N1\r\nN2\r\n");
    machine().protocol = PROTOCOL_HEIDENHAIN;
    begin_send("part.nc", true);
    advance_clock(5000);
    EXPECT_EQ(take_sent(1), "\x06\x02N1\r\n\x17\x6D\x02");
    feed_line(1, "\x06");
    advance_clock(5000);
    EXPECT_EQ(take_sent(1), "N2\r\n\x17\x6E\x02\x0C\x03");
    EXPECT_EQ(transfer_state[0].status, SENDING);
    answer_box("OK");
    feed_line(1, "\x06\x06");  // a stray answer behind the end changes nothing
    ASSERT_TRUE(ended());
    EXPECT_EQ(last_box(), "File Transmission Complete.");
    EXPECT_EQ(take_sent(1), "");
}

TEST_F(EngineTest, AnAnswerAheadOfTheWritesEndDrivesTheNextBlockOnce) {
    write("part.nc", "N1\r\nN2\r\nN3\r\n");
    machine().protocol = PROTOCOL_HEIDENHAIN;
    set_line_drain(1, 20000);  // the transmitter is empty long behind the last byte
    answer_blocks(2);
    answer_box("OK");
    begin_send("part.nc", true);
    ASSERT_TRUE(ended());
    EXPECT_EQ(take_sent(1), "\x06\x02N1\r\n\x17\x6D\x02N2\r\n\x17\x6E\x02N3\r\n\x17\x6F\x02\x0C\x03");
}

TEST_F(EngineTest, AQueuedSendWaitsForTheMachinesRequest) {
    for (const int protocol : {PROTOCOL_GENERAL, PROTOCOL_HEIDENHAIN}) {
        SCOPED_TRACE(protocol);
        begin_anew();
        write("part.nc", "N1\r\n");
        machine().protocol = protocol;
        begin_send("part.nc", false);
        EXPECT_EQ(line_facts(1).settings.xon_char, 0);
        feed_line(1, "ABC\x06\x13");
        advance_clock(60000);
        EXPECT_EQ(take_sent(1), "");
        EXPECT_EQ(transfer_state[0].status, SEND_STANDBY);
        if (protocol == PROTOCOL_HEIDENHAIN)
            answer_blocks(2);
        answer_box("OK");
        feed_line(1, "x\x11y");
        ASSERT_TRUE(ended());
        EXPECT_EQ(take_sent(1),
                  protocol == PROTOCOL_GENERAL ? "N1\r\n"s : "\x06\x02N1\r\n\x17\x6D\x02\x0C\x03"s);
    }
}

TEST_F(EngineTest, ARequestAheadOfThePreparationIsNotLost) {
    write("part.nc", "N1\r\n");
    TransferState& t = transfer_state[0];
    send_now = 0;
    t.start_now = 0;
    copy_text(t.file_name, PATH_SIZE, path("part.nc").c_str());
    t.status = SEND_STANDBY;
    open_line();
    feed_line_at_once(1, "\x11");
    advance_clock(100);
    EXPECT_EQ(t.status, SEND_STANDBY);
    answer_box("OK");
    ASSERT_EQ(prepare_send(0), 1);
    ASSERT_TRUE(ended());
    EXPECT_EQ(take_sent(1), "N1\r\n");
}

TEST_F(EngineTest, ContinuousSendsAgainWithoutTheStartSequence) {
    write("part.nc", "N1\r\nN2\r\n");
    machine().start_char = 'S';
    machine().start_char_count = 1;
    machine().end_char = 'E';
    machine().end_char_count = 1;
    send_continuous = 1;
    begin_send("part.nc", true, 0, 4);  // from the second row
    send_continuous = 0;
    std::string sent;
    advance_until([&] { return (sent += take_sent(1)).size() >= 20; }, LONG);
    EXPECT_TRUE(sent.starts_with("SN2\r\nEN1\r\nN2\r\nEN1\r\n")) << sent;
    answer_box("OK");
    transfer_state[0].continuous = 0;
    ASSERT_TRUE(ended());
}

TEST_F(EngineTest, TheMachinesXoffHoldsTheLine) {
    const std::string file = program(300);
    write("part.nc", file);
    begin_send("part.nc", true);
    advance_clock(1000);
    feed_line_at_once(1, "\x13");
    advance_clock(100);
    take_sent(1);
    advance_clock(60000);
    EXPECT_EQ(take_sent(1), "");
    answer_box("OK");
    feed_line_at_once(1, "\x11");
    ASSERT_TRUE(ended());
    EXPECT_TRUE(file.ends_with(take_sent(1)));
}

TEST_F(EngineTest, WhatComesAheadOfThePreparationIsReceivedWhole) {
    for (const int handshake : {HANDSHAKE_SOFTWARE, HANDSHAKE_HARDWARE}) {
        for (const int rows : {2, 1000}) {  // of the larger one not all has room in the queue
            SCOPED_TRACE(std::to_string(handshake) + " " + std::to_string(rows));
            begin_anew();
            machine().handshake = static_cast<int16_t>(handshake);
            copy_text(transfer_state[0].file_name, PATH_SIZE, path("got.nc").c_str());
            open_line();
            const std::string line = program(rows);
            feed_line(1, line);
            advance_clock(60'000);
            ASSERT_EQ(prepare_receive(0), 1);
            EXPECT_EQ(transfer_state[0].status, RECEIVING);
            set_ui_timer(UI_TIMER_SLOW);
            answer_box("OK");
            ASSERT_TRUE(ended());
            EXPECT_EQ(last_box(), "File Transmission Complete.");
            EXPECT_EQ(bytes("got.nc"), line);
        }
    }
}

// hexlane-cli has the lock of NAME.part, another window that of NAME.
TEST_F(EngineTest, ANameThatAnotherProgramReceivesIntoIsRefused) {
    for (const std::string name : {"got.nc", "got.nc.part"}) {
        SCOPED_TRACE(name);
        begin_anew();
        write(name, "theirs");
        FileHandle theirs = NO_FILE;
        ASSERT_EQ(lock_name(path(name).c_str(), &theirs), 1);
        copy_text(transfer_state[0].file_name, PATH_SIZE, path("got.nc").c_str());
        open_line();
        EXPECT_EQ(prepare_receive(0), 0);
        EXPECT_EQ(last_file_error(), FileError::IN_USE);
        EXPECT_EQ(work_names(), std::vector<std::string>{name});
        EXPECT_EQ(bytes(name), "theirs");
        file_close(theirs);
        ASSERT_EQ(prepare_receive(0), 1);
        EXPECT_EQ(lock_name(path("got.nc").c_str(), &theirs), 0);
        port_close(0);
        EXPECT_EQ(lock_name(path("got.nc").c_str(), &theirs), 1);
        file_close(theirs);
    }
}

TEST_F(EngineTest, AReceiveThatHasLostBytesIsNotComplete) {
    begin_receive("got.nc");
    feed_line(1, "N1\r\nN2\r\n");
    advance_clock(3);
    lose_line_bytes(1, 2);
    answer_box("OK");
    ASSERT_TRUE(ended());
    EXPECT_NE(last_box().find("not the whole program"), std::string::npos);
    EXPECT_EQ(bytes("got.nc").size(), 6U);
}

// A close without a word leaves the fault for its caller.
TEST_F(EngineTest, AClosedReceiveKeepsThatBytesWereLost) {
    begin_receive("got.nc");
    feed_line(1, "N1\r\nN2\r\n");
    lose_line_bytes(1, 1);
    advance_clock(20);
    port_close(0);
    EXPECT_EQ(transfer_state[0].fault, TransferFault::BYTES_LOST);
    EXPECT_EQ(bytes("got.nc").size(), 7U);
}

TEST_F(EngineTest, WhatComesDuringASendDoesNotBarTheAnswers) {
    write("part.nc", "N1\r\nN2\r\n");
    machine().protocol = PROTOCOL_HEIDENHAIN;
    begin_send("part.nc", true);
    feed_line(1, std::string(3 * RECEIVE_RING, 'x') + "\x06");
    advance_clock(60'000);
    EXPECT_EQ(transfer_state[0].tally.acks, 1);
    answer_box("OK");
    feed_line(1, "\x06");
    ASSERT_TRUE(ended());
    EXPECT_EQ(last_box(), "File Transmission Complete.");
}

TEST_F(EngineTest, ALineThatGoesAheadOfThePreparationEndsTheTransfer) {
    for (const std::string kind : {"queue", "now", "receive"}) {
        SCOPED_TRACE(kind);
        begin_anew();
        write("part.nc", program(10));
        TransferState& t = transfer_state[0];
        t.status = kind == "queue" ? SEND_STANDBY : SEND_DONE;  // the one before has just ended
        t.start_now = send_now = kind == "now";
        t.start_offset = t.file_position = 0;
        copy_text(t.file_name, PATH_SIZE, path(kind == "receive" ? "got.nc" : "part.nc").c_str());
        open_line();
        unplug_line(1);
        while (run_ready_worker()) {  // and nobody hears its message yet
        }
        ASSERT_EQ(kind == "receive" ? prepare_receive(0) : prepare_send(0), 1);
        EXPECT_EQ(t.status, PORT_IDLE);
        answer_box("OK");
        ASSERT_TRUE(ended(0, 2000));
        EXPECT_NE(last_box().find("COM1"), std::string::npos);
    }
}

TEST_F(EngineTest, AFileThatChangesUnderTheSendIsNotMixed) {
    const std::string file = program(2000);
    for (const bool removed : {false, true}) {
        begin_anew();
        write("part.nc", file);
        machine().protocol = PROTOCOL_PHILLIPS;
        begin_send("part.nc", true);
        advance_clock(1000);
        std::filesystem::remove(path("part.nc"));
        if (!removed)
            write("part.nc", std::string(file.size(), 'Z'));
        answer_box("OK");
        ASSERT_TRUE(ended());
        const std::string sent = take_sent(1);
        EXPECT_EQ(sent.back(), '\x04');
        EXPECT_EQ(file.substr(0, sent.size() - 1), sent.substr(0, sent.size() - 1));
        EXPECT_LT(sent.size(), file.size());
        EXPECT_NE(last_box().find("not the whole program"), std::string::npos);
    }
}

// A touch, a copy put in the file's place, and the same bytes written anew change the stamp and no byte.
TEST_F(EngineTest, AChangeIsHeldAgainstTheBytes) {
    const std::string file = program(2000);
    const std::string last_row_edited = file.substr(0, file.size() - 3) + "9\r\n";
    struct Case {
        const char* name;
        bool in_place;
        const std::string& bytes;
    };
    for (const Case& c : {Case{"written anew", true, file}, Case{"replaced by a copy", false, file},
                          Case{"edited in place", true, last_row_edited},
                          Case{"replaced by an edit", false, last_row_edited}}) {
        for (const bool by_line : {false, true}) {
            SCOPED_TRACE(c.name + std::to_string(by_line));
            begin_anew();
            write("part.nc", file);
            machine().eob_delay_ms = by_line ? 1 : 0;
            begin_send("part.nc", true);
            advance_clock(1000);
            write(c.in_place ? "part.nc" : "copy.nc", c.bytes);
            if (!c.in_place)
                std::filesystem::rename(path("copy.nc"), path("part.nc"));
            std::filesystem::last_write_time(path("part.nc"), std::filesystem::file_time_type::clock::now() +
                                                                  std::chrono::hours(1));
            answer_box("OK");
            ASSERT_TRUE(ended());
            if (c.bytes == file) {
                EXPECT_EQ(last_box(), "File Transmission Complete.");
                EXPECT_EQ(take_sent(1), file);
            } else {
                EXPECT_NE(last_box().find("not the whole program"), std::string::npos);
                EXPECT_LT(take_sent(1).size(), file.size());
            }
        }
    }
}

TEST_F(EngineTest, AFullDiskEndsAReceiveAndKeepsWhatCame) {
    begin_receive("got.nc");
    feed_line(1, std::string(3000, 'A'));
    advance_clock(1500);
    fill_disk_after(0);
    answer_box("OK");
    ASSERT_TRUE(ended());
    fill_disk_after(-1);
    EXPECT_NE(last_box().find("no space is left"), std::string::npos);
    const std::string got = bytes("got.nc");
    EXPECT_GT(got.size(), 100U);
    EXPECT_EQ(got, std::string(got.size(), 'A'));
}

TEST_F(EngineTest, SmallReadsAreTakenWhenTheQueueStandsStill) {
    open_line();
    uint8_t buffer[RECEIVE_CHUNK];
    transfer_state[0].status = PORT_IDLE;  // nobody else reads
    const auto queue = [](int count) {
        feed_line_at_once(1, std::string(static_cast<std::size_t>(count), 'A'));
        advance_clock(100);
    };
    queue(100);
    EXPECT_EQ(port_read(buffer, 2048, 0), 0);
    EXPECT_EQ(port_read(buffer, 2048, 0), 100);
    queue(700);
    EXPECT_EQ(port_read(buffer, 2048, 0), 700);
    queue(1);
    EXPECT_EQ(port_read(buffer, 1, 0), 1);
}

TEST_F(EngineTest, APortThatCannotBeOpenedSaysWhyAndLeavesNothing) {
    refuse_line(1, "COM1 is in use by process 4711.");
    ASSERT_EQ(port_init(0, machine()), 1);
    EXPECT_EQ(port_open(0), 0);
    EXPECT_FALSE(port_slot[0].connected);
    EXPECT_EQ(port_slot[0].worker_thread, NO_THREAD);
    EXPECT_STREQ(line_problem_text(), "COM1 is in use by process 4711.");
    refuse_line(1, "");
    refuse_line_settings(1, true);
    EXPECT_EQ(port_open(0), 0);
    EXPECT_FALSE(line_facts(1).open);
}

TEST_F(EngineTest, AWorkerThatCannotStartIsToldAndThePortClosed) {
    std::vector<ThreadHandle> others;
    ThreadHandle other = NO_THREAD;
    while ((other = thread_start([](int64_t) -> int64_t { return 0; }, 0, ThreadPriority::NORMAL)) !=
           NO_THREAD)
        others.push_back(other);
    ASSERT_EQ(port_init(0, machine()), 1);
    answer_box("OK");
    EXPECT_EQ(open_port(0), 0);
    EXPECT_EQ(last_box(), "Failed to create event for thread!");
    EXPECT_FALSE(port_slot[0].connected);
    EXPECT_FALSE(line_facts(1).open);
    for (const ThreadHandle thread : others)
        thread_join(thread);
}

TEST_F(EngineTest, AHardwareHandshakeThatComesBackEndsAWait) {
    write("part.nc", "N1\r\nN2\r\n");
    machine().protocol = PROTOCOL_HEIDENHAIN;
    machine().handshake = HANDSHAKE_HARDWARE;
    set_line_drain(1, 200000);
    begin_send("part.nc", true);
    advance_clock(15);  // the write is still running
    set_line_cts(1, false);
    advance_clock(100);
    set_line_cts(1, true);
    answer_blocks(2);
    answer_box("OK");
    ASSERT_TRUE(ended());
    EXPECT_EQ(take_sent(1), "\x06\x02N1\r\n\x17\x6D\x02N2\r\n\x17\x6E\x02\x0C\x03");
}

}  // namespace
}  // namespace hexlane
