// A person who edits and presses whatever is there, and machines that send, stop, answer and vanish, at
// random but the same in each run. Between any two acts: a row's buttons agree with its state, a port is open
// only for a reason, a file is held only by a receive, the document is what was typed, and its file changes
// only by a save.

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "platform/keys.h"
#include "platform/scripted/desktop_state.h"
#include "platform/scripted/line_hooks.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/person.h"
#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "shell/ui_timer.h"
#include "station/activity.h"
#include "station/port_report.h"
#include "store/row_table.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

constexpr int STEPS = 500;
constexpr int BUTTONS_FOLLOW_MS = 800;  // two ticks of the activity screen
constexpr const char* DOCUMENT = "N1 G0 X1\r\nN2 G1 X2\r\nM30\r\n";
constexpr const char* PROGRAM = "%\r\nN10 G0 X1.5 (FACE)\r\nN20 G1 Y2\r\n(POCKET)\r\nN30 M30\r\n%";

class RandomPerson : public ProgramTest, public ::testing::WithParamInterface<int> {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        person = this;
        random.seed(static_cast<unsigned>(GetParam()));
        write("edited.nc", DOCUMENT);
        write("program.nc", PROGRAM);
        write("long.nc", many_rows());
        write("empty.nc", "");
    }

    void TearDown() override {
        for (int slot = 0; slot < SLOT_COUNT; slot++)
            port_close(slot);
        stop_ui_timer();
        for (int slot = 0; slot < SLOT_COUNT; slot++)
            transfer_state[slot].status = PORT_IDLE;
        ProgramTest::TearDown();
    }

    static std::string many_rows() {
        std::string text;
        for (int row = 1; row <= 300; row++)
            text += "N" + std::to_string(row) + " G1 X" + std::to_string(row * 3) + "\r\n";
        return text;
    }

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); }
    bool chance(int percent) { return below(100) < percent; }

    // Two machines of each protocol's kind, on two ports.
    static void make_machines() {
        set_machine_defaults();
        for (int i = 0; i < MACHINE_COUNT; i++) {
            set_field(&machine_table[i], Field::PROTOCOL, i % 4);
            set_field(&machine_table[i], Field::PORT_INDEX, i / 4 % 2);
            set_field(&machine_table[i], Field::EOB_DELAY_MS, i % 5 == 4 ? 20 : 0);
            set_field(&machine_table[i], Field::HANDSHAKE,
                      i % 7 == 6 ? HANDSHAKE_HARDWARE : HANDSHAKE_SOFTWARE);
        }
        ASSERT_EQ(save_machine_table(), 1);
        slot_machine[1] = 4;
    }

    // ---- Acts -------------------------------------------------------------------------------------------

    static bool act() { return person->take_step(); }

    bool take_step() {
        check_all();
        if (HasFailure() || steps_taken++ >= STEPS)
            return wind_down();
        last_act.clear();
        if (chance(25))
            play_machine_or_wait();
        else if (const Modal* modal = top_modal())
            act_in(*modal);
        else
            act_in_editor();
        return true;
    }

    void must(const Refusal& refusal) { ASSERT_EQ(refusal, "") << last_act; }

    void play_machine_or_wait() {
        static const char* const BYTES[] = {"\x06", "\x11", "\x13", "G1 X1\r\n", "\x06\x06", "%\r\nM30\r\n"};
        const int port = 1 + below(2);
        switch (below(8)) {
        case 0:
            if (chance(20))
                unplug_line(port);
            break;
        case 1:
            plug_line(1);
            plug_line(2);
            break;
        case 2:
            set_line_cts(port, chance(70));
            break;
        case 3:
        case 4:
            feed_line(port, BYTES[below(6)]);
            break;
        default: {
            const int ms = below(5) == 0 ? 5000 : 1 + below(900);
            last_act = "wait " + std::to_string(ms);
            must(person_waits(ms));
        }
        }
    }

    void act_in_editor() {
        static const int COMMANDS[] = {1032, 1033, 1033, 1033, 1042, 1035, 1002, 1003};
        if (desktop.main.minimized)
            must(person_starts_again(""));
        // A save gives a file without a last line end more than what is typed.
        if (child[0].file_open && document.ends_with("\r\n") && chance(40)) {
            edit();
            return;
        }
        if (busy_sending_or_receiving() && chance(10)) {
            last_act = "close";
            must(person_closes_window());
            return;
        }
        const int id = COMMANDS[below(8)];
        last_act = "command " + std::to_string(id);
        may_save = id == 1002 || id == 1003;
        may_drop = false;
        if (id == 1032)
            receive_given_up[0] = receive_given_up[1] = false;
        if (id == 1042)
            receive_given_up[0] = false;
        if (id == 1035 || !child[0].file_open)
            must(person_starts_again(path("edited.nc")));
        must(person_chooses_command(id));
    }

    // One change of a row of the document and of its model. The end row stays as it is, with no row made
    // ahead of it by Enter: that would write one more line end.
    void edit() {
        static const char* const TYPED[] = {"X", " Y5", "(A)", "G2"};
        const int last = static_cast<int>(model.size()) - 1;
        must(person_presses("Ctrl+Home"));
        const int wanted = below(last + 1);
        for (int row = 0; row < wanted; row++)
            must(person_presses("Down"));
        const bool at_end = chance(50);
        must(person_presses(at_end ? "End" : "Home"));
        const auto row = static_cast<std::size_t>(child[0].current_row);
        ASSERT_LT(row, model.size());
        std::string& text = model[row];
        const int kind = static_cast<int>(row) == last || text.size() > 40 ? 3 : below(4);
        if (kind == 0 && at_end && !text.empty()) {
            last_act = "Backspace";
            must(person_presses("Backspace"));
            text.pop_back();
        } else if (kind == 1 && !at_end && !text.empty()) {
            last_act = "Delete";
            must(person_presses("Delete"));
            text.erase(0, 1);
        } else if (kind == 2 && last < 12 && (!at_end || static_cast<int>(row) < last - 1)) {
            last_act = "Enter";
            must(person_presses("Enter"));
            model.insert(model.begin() + static_cast<std::ptrdiff_t>(at_end ? row + 1 : row), "");
        } else if (static_cast<int>(row) != last && text.size() <= 40) {
            const std::string typed = TYPED[below(4)];
            last_act = "type " + typed;
            must(person_types(typed));
            text.insert(at_end ? text.size() : 0, typed);
        }
    }

    void act_in(const Modal& modal) {
        last_act = modal.name;
        if (modal.kind == ModalKind::BOX) {
            const std::string& button =
                modal.buttons[static_cast<std::size_t>(below(static_cast<int>(modal.buttons.size())))];
            last_act += " " + button;
            if (modal.name.find("Save current changes?") != std::string::npos) {
                may_save = button == "Yes";
                may_drop = button == "No";
            }
            must(person_clicks({button}));
        } else if (modal.kind == ModalKind::FILE_DIALOG) {
            answer_dialog();
        } else {
            use_control(*find_view(modal.view, "view"));
        }
    }

    void answer_dialog() {
        static const char* const FILES[] = {"program.nc", "long.nc",    "empty.nc", "edited.nc",
                                            "got-1.nc",   "program.nc", "long.nc",  "got-2.nc"};
        if (chance(25)) {
            must(person_cancels());
            return;
        }
        const char* name = FILES[below(8)];
        last_act += std::string(" ") + name;
        must(person_gives_file(path(name), -1));
    }

    void use_control(const View& view) {
        const Control& control =
            view.controls[static_cast<std::size_t>(below(static_cast<int>(view.controls.size())))];
        if (control.hidden || control.disabled || !takes_focus(control))
            return;
        const ControlName name = {"", 1, control.spec->id};
        last_act += " @" + std::to_string(control.spec->id);
        switch (control.spec->kind) {
        case ControlKind::BUTTON:
            note_row_button(view, control.spec->id);
            if ((control.spec->flags & CONTROL_CANCEL) == 0 || chance(40))
                must(person_clicks(name));
            break;
        case ControlKind::RADIO:
            must(person_picks(name));
            break;
        case ControlKind::CHECK:
            must(person_checks(name, !control.checked));
            break;
        case ControlKind::CHOICE:
            must(person_selects(name, below(static_cast<int>(control.rows.size()))));
            break;
        case ControlKind::FIELD:
            must(person_fills(name, std::to_string(below(130))));
            break;
        case ControlKind::PANE:
            use_pane(name);
            break;
        default:
            break;
        }
    }

    // Behind Receive a row's port stays open though the person gives up, until another button closes it.
    void note_row_button(const View& view, int id) {
        const int slot = id / 100 - 1;
        if (std::string(view.spec->name) != "COMMDLG" || slot < 0 || slot >= SLOT_COUNT)
            return;
        if (id % 100 == 7)
            receive_given_up[slot] = true;
        else if (id % 100 == 6 || id % 100 == 8)
            receive_given_up[slot] = false;
    }

    void use_pane(const ControlName& name) {
        static const char* const KEYS[] = {"Up", "Down", "PageUp", "PageDown", "Home", "End"};
        MouseEvent event;
        event.act = chance(60) ? MouseAct::RIGHT : MouseAct::DOWN;
        event.in_pane = true;
        event.pane = name;
        event.col = below(60);
        event.row = below(16);
        must(person_uses_mouse(event));
        if (event.act == MouseAct::DOWN) {
            event.act = MouseAct::UP;
            must(person_uses_mouse(event));
            if (top_modal() != nullptr && top_modal()->kind == ModalKind::VIEW)
                must(person_presses(KEYS[below(6)]));
        }
    }

    // Everything is closed, so that the program can be left.
    bool wind_down() {
        Modal* modal = top_modal();
        if (modal == nullptr)
            return false;
        if (modal->kind == ModalKind::BOX) {
            person_clicks({modal->buttons.back()});
        } else if (modal->kind == ModalKind::FILE_DIALOG) {
            person_cancels();
        } else {
            person_presses_in_modal(VK_ESCAPE);
        }
        return true;
    }

    // ---- What always holds ------------------------------------------------------------------------------

    static bool busy_sending_or_receiving() {
        for (int slot = 0; slot < SLOT_COUNT; slot++) {
            if (slot_is_busy(slot) && transfer_state[slot].status != RECEIVE_STANDBY)
                return true;
        }
        return false;
    }

    static bool view_is_up(const char* name) {
        for (const Modal* modal : desktop.modals) {
            if (modal->kind == ModalKind::VIEW &&
                std::string(find_view(modal->view, "view")->spec->name) == name)
                return true;
        }
        return false;
    }

    void check_all() {
        for (int slot = 0; slot < SLOT_COUNT; slot++) {
            SCOPED_TRACE("slot " + std::to_string(slot) + " step " + std::to_string(steps_taken) + ": " +
                         last_act);
            check_slot(slot);
            check_buttons(slot);
        }
        check_ports();
        check_document();
        EXPECT_FALSE(child[0].file_open && is_active_file(child[0].file_path)) << last_act;
    }

    // A row that is being typed is in its buffer only, and the rows are read behind it.
    static std::vector<std::string> rows_on_show() {
        std::vector<std::string> texts = rows();
        fetch_row(child[0].current_row);
        return texts;
    }

    void check_document() {
        const Modal* modal = top_modal();
        if (modal != nullptr && modal->kind != ModalKind::VIEW)
            return;  // a save or a close may be under way
        const std::string open_path = child[0].file_open ? child[0].file_path : "";
        const std::string on_disk = open_path.empty() ? "" : read_bytes(open_path);
        const std::vector<std::string> shown =
            open_path.empty() ? std::vector<std::string>() : rows_on_show();
        if (open_path != document_path || (may_drop && !child[0].modified)) {
            document_path = open_path;
            document = on_disk;
            model = shown;
            may_drop = false;
        }
        EXPECT_EQ(shown, model) << last_act;
        if (on_disk != document) {
            EXPECT_TRUE(may_save) << last_act;
            EXPECT_EQ(with_line_end(on_disk), joined(model)) << last_act;
            document = on_disk;
        }
        if (!open_path.empty() && !child[0].modified) {
            EXPECT_EQ(with_line_end(on_disk), joined(model)) << last_act;
        }
    }

    static std::string with_line_end(const std::string& text) {
        return text.empty() || text.ends_with("\r\n") ? text : text + "\r\n";
    }

    static std::string joined(const std::vector<std::string>& rows) {
        std::string text;
        for (const std::string& row : rows)
            text += &row == &rows.back() ? row : row + "\r\n";
        return text;
    }

    void check_slot(int slot) {
        const TransferState& t = transfer_state[slot];
        const bool receives = t.status == RECEIVING || t.status == RECEIVE_STANDBY;
        EXPECT_NE(t.status, XON_SEEN);
        if (!is_being_closed(slot)) {
            EXPECT_EQ(t.file_handle != NO_FILE, receives);
        }
        const bool in_properties = slot == send_slot && view_is_up("SEND");
        if (slot_is_busy(slot) && !in_properties) {
            EXPECT_TRUE(port_slot[slot].connected || is_being_closed(slot));
        }
        if (in_properties && !view_is_up("StartPoint")) {
            EXPECT_FALSE(port_slot[slot].connected);
        }
        check_idle_port(slot, in_properties);
    }

    // An open port without a transfer: the start point screen has it, or a Receive was given up. A box stands
    // in the middle of an act.
    void check_idle_port(int slot, bool in_properties) {
        const Modal* modal = top_modal();
        const bool in_box = modal != nullptr && modal->kind == ModalKind::BOX;
        if (slot_is_busy(slot)) {
            receive_given_up[slot] = false;  // the transfer's end closes the port
        } else if (!in_box && !in_properties) {
            EXPECT_TRUE(!port_slot[slot].connected || receive_given_up[slot]);
        }
    }

    // As many lines are open as slots have one, or are just giving one back.
    static void check_ports() {
        int lines = 0;
        for (int port = 1; port <= PORT_COUNT; port++)
            lines += line_facts(port).open ? 1 : 0;
        int slots = 0;
        for (int slot = 0; slot < SLOT_COUNT; slot++)
            slots += port_slot[slot].connected || is_being_closed(slot) ? 1 : 0;
        EXPECT_EQ(lines, slots);
    }

    // Once the state has stood still for two ticks.
    void check_buttons(int slot) {
        const bool busy = slot_is_busy(slot);
        const Modal* modal = top_modal();
        const bool shown = modal != nullptr && view_is_up("COMMDLG");
        if (busy != was_busy[slot] || !shown) {
            was_busy[slot] = busy;
            since_us[slot] = clock_us();
        }
        if (!shown || clock_us() - since_us[slot] < BUTTONS_FOLLOW_MS * 1000)
            return;
        for (const auto& [handle, view] : desktop.views) {
            for (const Control& control : view.controls) {
                const int id = control.spec->id - 100 * (slot + 1);
                if (std::string(view.spec->name) == "COMMDLG" && (id == 4 || id == 6 || id == 7 || id == 9)) {
                    EXPECT_EQ(control.disabled, busy) << "button " << control.spec->id;
                }
            }
        }
    }

    static RandomPerson* person;
    std::mt19937 random;
    int steps_taken = 0;
    std::string last_act;
    std::string document_path;       // of the file that is open in the editor
    std::string document;            // what it holds
    std::vector<std::string> model;  // the rows that should be on show
    bool may_save = false;           // the last act lets the file change ...
    bool may_drop = false;           // ... or the document go back to its file
    bool receive_given_up[SLOT_COUNT] = {};
    bool was_busy[SLOT_COUNT] = {};
    int64_t since_us[SLOT_COUNT] = {};
};

RandomPerson* RandomPerson::person = nullptr;

int open_files() {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        static_cast<void>(entry);
        count++;
    }
    return count;
}

TEST_P(RandomPerson, FindsRowsPortsAndFilesInOrder) {
    start();
    make_machines();
    close_document();
    const int open_before = open_files();
    set_person(act);
    run_message_loop();
    EXPECT_GE(steps_taken, STEPS);
    for (int slot = 0; slot < SLOT_COUNT; slot++)
        port_close(slot);
    close_document();
    EXPECT_LE(open_files(), open_before) << "a file is left open";
    for (const std::string& name : temp_names())
        EXPECT_EQ(name.find("idx.twr"), std::string::npos) << name;
}

// A longer hunt: HEXLANE_RANDOM_RUNS=5000 in the environment.
int runs_wanted() {
    const char* wanted = std::getenv("HEXLANE_RANDOM_RUNS");
    return wanted != nullptr ? std::atoi(wanted) : 60;
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomPerson, ::testing::Range(1, 1 + runs_wanted()));

}  // namespace
}  // namespace hexlane
