// renumber_view.cpp: the view IDD_RENUM, and the commands Renumber and Strip Line Numbers.

#include <iterator>

#include "ncutils/nc_commands.h"
#include "ncutils/ncutils_texts.h"
#include "ncutils/utilities.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t START_FIELD = 101;
constexpr int16_t INCREMENT_FIELD = 102;
constexpr int16_t DIGITS_FIELD = 103;
constexpr int16_t LIMIT_FIELD = 104;
constexpr int16_t UNNUMBERED_BOX = 105;

constexpr InputRule NINE_DIGITS = {9, DIGITS};
constexpr InputRule FIVE_DIGITS = {5, DIGITS};
constexpr InputRule ONE_DIGIT = {1, DIGITS};

constexpr ControlSpec RENUMBER_CONTROLS[] = {
    {201, ControlKind::TEXT, "&STARTING NUMBER:", 0, 0, 1, 1, 0, 0, nullptr},
    {START_FIELD, ControlKind::FIELD, "", 0, 1, 1, 1, 9, 0, &NINE_DIGITS},
    {202, ControlKind::TEXT, "&INCREMENT:", 1, 0, 1, 1, 0, 0, nullptr},
    {INCREMENT_FIELD, ControlKind::FIELD, "", 1, 1, 1, 1, 9, 0, &FIVE_DIGITS},
    {203, ControlKind::TEXT, "NO.  of &DIGITS:", 2, 0, 1, 1, 0, 0, nullptr},
    {DIGITS_FIELD, ControlKind::FIELD, "", 2, 1, 1, 1, 9, 0, &ONE_DIGIT},
    {204, ControlKind::TEXT, "&LINE NUMBER LIMIT:", 3, 0, 1, 1, 0, 0, nullptr},
    {LIMIT_FIELD, ControlKind::FIELD, "", 3, 1, 1, 1, 9, 0, &NINE_DIGITS},
    {205, ControlKind::TEXT, "(enter 0 for no limit)", 4, 0, 1, 2, 0, 0, nullptr},
    {UNNUMBERED_BOX, ControlKind::CHECK, "&Number Blocks Not Currently Numbered", 5, 0, 1, 2, 0, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "OK", 6, 0, 1, 1, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 6, 1, 1, 1, 0, CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};

constexpr ViewSpec RENUMBER_VIEW = {"IDD_RENUM", "RENUMBER", 0, RENUMBER_CONTROLS,
                                    std::size(RENUMBER_CONTROLS)};

// What OK has read from the view. The increment wraps at 16 bits.
struct RenumberAnswers {
    int32_t start;
    int16_t increment;
    int digits;
    int32_t limit;
    bool number_unnumbered;
} answers;

void show_defaults(ViewHandle view) {
    put_text(view, START_FIELD, "1");
    put_text(view, INCREMENT_FIELD, "1");
    put_text(view, DIGITS_FIELD, "4");
    put_text(view, LIMIT_FIELD, "0");
}

void take_answers(ViewHandle view) {
    answers = {take_number(view, START_FIELD, 0), static_cast<int16_t>(take_number(view, INCREMENT_FIELD, 0)),
               take_number(view, DIGITS_FIELD, 0), take_number(view, LIMIT_FIELD, 0),
               view_checked(view, UNNUMBERED_BOX)};
}

int64_t renumber_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    return serve_answers(view, message, first, second, show_defaults, take_answers);
}

}  // namespace

void command_renumber() {
    if (show_view(&RENUMBER_VIEW, renumber_proc) == 1) {
        RowRun run;
        const PointerShape pointer = begin_wait();
        const int done = renumber_rows(answers.increment, answers.start, answers.number_unnumbered,
                                       answers.limit, answers.digits, &run);
        end_wait(pointer);
        repaint_now();
        if (done && !run.stopped)
            show_ncutils_box(NcUtilsBox::RENUMBER_COMPLETE);
        if (done)
            tell_run(run);
    }
    repaint_now();
}

void command_strip() {
    constexpr int YES = 0;
    if (show_ncutils_box(NcUtilsBox::STRIP_QUESTION) != YES)
        return;
    RowRun run;
    const PointerShape pointer = begin_wait();
    const int done = strip_line_numbers(&run);
    end_wait(pointer);
    repaint_now();
    if (done)
        tell_run(run);
}

}  // namespace hexlane
