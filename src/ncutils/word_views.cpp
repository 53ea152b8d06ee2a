// word_views.cpp: the four views that choose address letters, IDD_SCALE, IDD_SHIFT, IDD_ABS2INCR and
// IDD_INCR2ABS, and their commands.

#include <array>
#include <cstring>

#include "ncutils/nc_commands.h"
#include "ncutils/utilities.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t OPERAND_FIELD = 101;
constexpr int16_t PRECISION_FIELD = 102;
constexpr int16_t FIRST_LETTER_BOX = 110;  // the letter's distance from A is added

constexpr char SCALE_LETTERS[] = "ABCDEFIJKRSUVWXYZ";
constexpr char CONVERSION_LETTERS[] = "ABCDEFIJKSUVWXYZ";  // no R: it is a radius, never a position

constexpr const char* LETTER_LABELS[] = {"&A", "&B", "&C", "&D", "&E", "&F", "&G", "&H", "&I",
                                         "&J", "&K", "&L", "&M", "&N", "&O", "&P", "&Q", "&R",
                                         "&S", "&T", "&U", "&V", "&W", "&X", "&Y", "&Z"};
constexpr int LETTERS_IN_A_ROW = 6;

constexpr InputRule OPERAND_RULE = {9, "0123456789.-"};
// One digit is in the range of 0 to 9, and an emptied field means 0: no value can be outside.
constexpr InputRule PRECISION_RULE = {1, DIGITS};

// A view's controls: the operand, if it has a label, the precision, the boxes in a frame, the buttons.
template <std::size_t LetterCount, bool HasOperand>
constexpr auto word_controls(const char* operand_label, const char* frame_label, const char* letters) {
    std::array<ControlSpec, LetterCount + (HasOperand ? 7 : 5)> controls = {};
    std::size_t count = 0;
    uint8_t row = 0;
    if (HasOperand) {
        controls[count++] = {201, ControlKind::TEXT, operand_label, row, 0, 1, 3, 0, 0, nullptr};
        controls[count++] = {OPERAND_FIELD, ControlKind::FIELD, "", row, 3, 1, 3, 9, 0, &OPERAND_RULE};
        row++;
    }
    controls[count++] = {202, ControlKind::TEXT, "DECIMAL &PRECISION:", row, 0, 1, 3, 0, 0, nullptr};
    controls[count++] = {PRECISION_FIELD, ControlKind::FIELD, "", row, 3, 1, 3, 9, 0, &PRECISION_RULE};
    row++;
    controls[count++] = {203, ControlKind::FRAME, frame_label, row, 0, 3, LETTERS_IN_A_ROW, 0, 0, nullptr};
    for (std::size_t i = 0; i < LetterCount; i++) {
        const int letter = letters[i] - 'A';
        controls[count++] = {static_cast<int16_t>(FIRST_LETTER_BOX + letter),
                             ControlKind::CHECK,
                             LETTER_LABELS[letter],
                             static_cast<uint8_t>(row + i / LETTERS_IN_A_ROW),
                             static_cast<uint8_t>(i % LETTERS_IN_A_ROW),
                             1,
                             1,
                             0,
                             0,
                             nullptr};
    }
    row = static_cast<uint8_t>(row + 3);
    controls[count++] = {
        OK_BUTTON, ControlKind::BUTTON, "OK", row, 0, 1, 3, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr};
    controls[count++] = {
        CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", row, 3, 1, 3, 0, CONTROL_CANCEL | CONTROL_CENTERED,
        nullptr};
    return controls;
}

constexpr int SCALE_COUNT = sizeof SCALE_LETTERS - 1;
constexpr int CONVERSION_COUNT = sizeof CONVERSION_LETTERS - 1;
constexpr const char* FACTOR_LABEL = "DIMENSIONS TO APPLY FACTOR TO:";

constexpr auto SCALE_CONTROLS =
    word_controls<SCALE_COUNT, true>("SCALE FAC&TOR:", FACTOR_LABEL, SCALE_LETTERS);
constexpr auto SHIFT_CONTROLS =
    word_controls<SCALE_COUNT, true>("SHIFT FAC&TOR:", FACTOR_LABEL, SCALE_LETTERS);
constexpr auto ABS_TO_INCR_CONTROLS = word_controls<CONVERSION_COUNT, false>(
    nullptr, "DIMENSIONS TO CHANGE FROM ABSOLUTE TO INCREMENTAL:", CONVERSION_LETTERS);
constexpr auto INCR_TO_ABS_CONTROLS = word_controls<CONVERSION_COUNT, false>(
    nullptr, "DIMENSIONS TO CHANGE FROM INCREMENTAL TO ABSOLUTE:", CONVERSION_LETTERS);

struct WordUtility {
    ViewSpec view;
    const char* letters;  // of its boxes
    bool has_operand;
    WordArithmetic arithmetic;
    int status;  // number of its status message
};

constexpr WordUtility SCALE = {
    {"IDD_SCALE", "SCALE DIMENSIONS", 0, SCALE_CONTROLS.data(), SCALE_CONTROLS.size()},
    SCALE_LETTERS,
    true,
    scale_number,
    STATUS_SCALE};
constexpr WordUtility SHIFT = {
    {"IDD_SHIFT", "SHIFT DIMENSIONS", 0, SHIFT_CONTROLS.data(), SHIFT_CONTROLS.size()},
    SCALE_LETTERS,
    true,
    shift_number,
    STATUS_SHIFT};
constexpr WordUtility ABS_TO_INCR = {
    {"IDD_ABS2INCR", "ABSOLUTE TO INCREMENTAL", 0, ABS_TO_INCR_CONTROLS.data(), ABS_TO_INCR_CONTROLS.size()},
    CONVERSION_LETTERS,
    false,
    increment_from_absolute,
    STATUS_ABSOLUTE_TO_INCREMENTAL};
constexpr WordUtility INCR_TO_ABS = {
    {"IDD_INCR2ABS", "INCREMENTAL TO ABSOLUTE", 0, INCR_TO_ABS_CONTROLS.data(), INCR_TO_ABS_CONTROLS.size()},
    CONVERSION_LETTERS,
    false,
    absolute_from_increment,
    STATUS_INCREMENTAL_TO_ABSOLUTE};

const WordUtility* shown;  // the utility whose view is up
WordRun answers;           // what its OK has read

void take_answers(ViewHandle view) {
    answers = {0, take_number(view, PRECISION_FIELD, 0), shown->arithmetic, 0, {}};
    if (shown->has_operand) {
        char operand[12];
        view_get_text(view, OPERAND_FIELD, operand, sizeof operand);
        answers.operand = static_cast<float>(read_number(operand, static_cast<int>(std::strlen(operand))));
    }
    for (const char* letter = shown->letters; *letter != '\0'; letter++) {
        if (view_checked(view, FIRST_LETTER_BOX + *letter - 'A'))
            answers.letters |= letter_bit(*letter);
    }
}

void show_defaults(ViewHandle view) {
    put_text(view, PRECISION_FIELD, "2");
}

int64_t word_view_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    return serve_answers(view, message, first, second, show_defaults, take_answers);
}

void ask_and_run(const WordUtility* utility) {
    shown = utility;
    if (show_view(&utility->view, word_view_proc) != 1) {
        repaint_now();
        return;
    }
    RowRun run;
    const PointerShape pointer = begin_wait();
    const int done = run_over_words(&answers, utility->status, &run);
    end_wait(pointer);
    if (done && !run.refused)
        child[0].modified = 1;  // whether or not a row was touched
    repaint_now();
    if (done)
        tell_run(run);
}

}  // namespace

void command_scale() {
    ask_and_run(&SCALE);
}

void command_shift() {
    ask_and_run(&SHIFT);
}

void command_abs_to_incr() {
    ask_and_run(&ABS_TO_INCR);
}

void command_incr_to_abs() {
    ask_and_run(&INCR_TO_ABS);
}

}  // namespace hexlane
