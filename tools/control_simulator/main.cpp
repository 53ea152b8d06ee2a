// main.cpp: control-simulator plays a machine control on a pty or a serial line; see --help.

#include "program_file.h"
#include "receive.h"
#include "send.h"

#include <cstdio>

namespace simulator {
namespace {

constexpr int NOT_WELL = 1;
constexpr int BAD_USE = 2;
constexpr int CANNOT = 3;

int refuse(const std::string& reason, int code) {
    std::fprintf(stderr, "control-simulator: %s\n", reason.c_str());
    return code;
}

// Gives the reason why it could not be done, empty for none.
std::string play(Session* session, const std::string& line_bytes, int64_t program_bytes) {
    begin_session(session);
    if (!session->options.send.empty()) {
        session->findings.program_bytes = program_bytes;
        send_program(session, line_bytes);
        return "";
    }
    ProgramFile program;
    const std::string reason = create_program(session->options, &session->findings, &program);
    if (!reason.empty())
        return reason;
    receive_program(session, &program);
    return close_program(&program) ? "" : "not all of " + session->options.receive + " could be written";
}

int run(const Options& options) {
    std::string line_bytes;
    int64_t program_bytes = 0;
    std::string reason;
    if (!options.send.empty())
        reason = encode_program(options, &line_bytes, &program_bytes);
    if (!reason.empty())
        return refuse(reason, CANNOT);
    Log log;
    Line line;
    reason = open_log(options.log, options.code, &log);
    if (reason.empty())
        reason = open_line(options, &line);
    if (!reason.empty()) {
        close_line(&line);
        return refuse(reason, CANNOT);
    }
    catch_signals();
    std::printf("line: %s\n", line.name.c_str());
    std::fflush(stdout);
    Session session(options, line, log);
    reason = play(&session, line_bytes, program_bytes);
    close_line(&line);
    if (!close_log(&log) && reason.empty())
        reason = "not all of " + options.log + " could be written";
    if (!print_report(options, session.findings) && reason.empty())
        reason = "the report could not be written";
    if (!reason.empty())
        return refuse(reason, CANNOT);
    return all_was_well(session.findings) ? 0 : NOT_WELL;
}

}  // namespace
}  // namespace simulator

int main(int count, char** arguments) {
    simulator::Options options;
    std::string reason;
    switch (simulator::read_options(count, arguments, &options, &reason)) {
    case simulator::Wish::HELP:
        return std::fputs(simulator::help_text().c_str(), stdout) < 0 ? simulator::CANNOT : 0;
    case simulator::Wish::REFUSED:
        std::fprintf(stderr, "control-simulator: %s\ncontrol-simulator --help tells more\n", reason.c_str());
        return simulator::BAD_USE;
    default:
        return simulator::run(options);
    }
}
