#include "AssertionDeath.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <string_view>

namespace dcftest {

namespace {

constexpr char kConditionMark[] = "### assert condition : ";
constexpr char kInfoMark[] = "### assert info : ";

LogLine ToLine(const ChildEvent& event) {
    LogLine line;
    line.logId = std::stoi(event.fields[1]);
    line.priority = std::stoi(event.fields[2]);
    line.tag = event.fields[3];
    line.format = event.fields[4];
    line.file = event.fields[5];
    line.function = event.fields[6];
    line.line = std::stoi(event.fields[7]);
    line.buffer = event.fields[8];
    return line;
}

bool IsLog(const ChildEvent& event) {
    return event.fields.front() == "log";
}

std::string WithoutSpaces(std::string_view text) {
    std::string result;
    std::copy_if(text.begin(), text.end(), std::back_inserter(result), [](char c) { return c != ' '; });
    return result;
}

// "int CSDCFDir::GetFidx(int)" is logged as "GetFidx".
std::string BareName(const std::string& signature) {
    const std::size_t end = signature.find('(');
    const std::size_t colon = signature.rfind(':', end);
    const std::size_t space = signature.rfind(' ', end);
    const std::size_t begin = colon != std::string::npos ? colon + 1 : space + 1;
    return signature.substr(begin, end - begin);
}

testing::AssertionResult Wrong(const Ending& ending, const std::string& what) {
    return testing::AssertionFailure() << what << "\n" << ending.Describe();
}

// Empty when the line is the expected one.
std::string CheckLine(const ChildEvent& event, const std::string& message, const ExpectedAssertion& expected) {
    if (!IsLog(event)) {
        return "a log line was expected, got " + event.fields.front();
    }
    const LogLine line = ToLine(event);
    if (line.buffer != LogBuffer(message)) {
        return "logged \"" + line.buffer + "\" instead of \"" + LogBuffer(message) + "\"";
    }
    if (line.logId != 3 || line.priority != 4 || line.tag != "MM_FLIST" || line.format != "%s: %s(%d) > %s") {
        return "the log call has other fixed arguments";
    }
    if (line.file != expected.file || line.function != BareName(expected.signature) || line.line < 1) {
        return "logged from " + line.file + ", " + line.function + ", line " + std::to_string(line.line);
    }
    return "";
}

// The system's line: "program: Src/U.cpp:12: signature: Assertion `C' failed." and nothing behind it.
std::string CheckFailureLine(const std::string& err, const ExpectedAssertion& expected, int loggedLine) {
    const std::string& condition = expected.failed.empty() ? expected.condition : expected.failed;
    const std::string tail = ": Assertion `" + condition + "' failed.\n";
    if (err.size() < tail.size() || err.compare(err.size() - tail.size(), tail.size(), tail) != 0) {
        return "standard error does not end with \"" + tail + "\"";
    }
    const std::string head = " Src/" + expected.file + ".cpp:";
    const std::size_t start = err.rfind(head);
    if (start == std::string::npos) {
        return "standard error does not name \"" + head + "\"";
    }
    std::size_t at = start + head.size();
    const std::size_t digits = at;
    while (at < err.size() && std::isdigit(static_cast<unsigned char>(err[at])) != 0) {
        ++at;
    }
    if (at == digits || std::stoi(err.substr(digits, at - digits)) != loggedLine) {
        return "the line number is not the logged " + std::to_string(loggedLine);
    }
    const std::string_view rest = std::string_view(err).substr(at, err.size() - tail.size() - at);
    if (WithoutSpaces(rest) != ":" + WithoutSpaces(expected.signature)) {
        return "the function is \"" + std::string(rest) + "\" instead of \"" + expected.signature + "\"";
    }
    return "";
}

} // namespace

std::string PrintedLine(const std::string& message) {
    return "[MM_FLIST  ] " + LogBuffer(message);
}

std::vector<LogLine> LoggedLines(const Ending& ending) {
    std::vector<LogLine> lines;
    for (const ChildEvent& event : ending.events) {
        if (IsLog(event)) {
            lines.push_back(ToLine(event));
        }
    }
    return lines;
}

std::vector<std::string> MessagesBeforeAssertion(const Ending& ending) {
    std::vector<std::string> messages;
    for (const LogLine& line : LoggedLines(ending)) {
        if (line.Message().rfind(kConditionMark, 0) == 0) {
            break;
        }
        messages.push_back(line.Message());
    }
    return messages;
}

testing::AssertionResult DiesByAssertion(const Ending& ending, const ExpectedAssertion& expected) {
    if (ending.signal != SIGABRT) {
        return Wrong(ending, "the process was not aborted");
    }
    const auto backtraces = std::count_if(ending.events.begin(), ending.events.end(),
                                          [](const ChildEvent& event) { return event.fields.front() == "backtrace"; });
    if (ending.events.size() < 3 || backtraces != 1 || IsLog(ending.events[ending.events.size() - 3])) {
        return Wrong(ending, "not exactly one backtrace, followed by two log lines");
    }
    const ChildEvent& backtrace = ending.events[ending.events.size() - 3];
    const ChildEvent& first = ending.events[ending.events.size() - 2];
    const ChildEvent& second = ending.events.back();
    for (const auto& [event, message] :
         {std::pair(&first, kConditionMark + expected.condition), std::pair(&second, kInfoMark + expected.info)}) {
        const std::string error = CheckLine(*event, message, expected);
        if (!error.empty()) {
            return Wrong(ending, error);
        }
    }
    const std::string printedCondition = PrintedLine(kConditionMark + expected.condition);
    const std::string printed = printedCondition + PrintedLine(kInfoMark + expected.info);
    if (ending.out.size() < first.printed || ending.out.substr(first.printed) != printed) {
        return Wrong(ending, "standard output does not end with the two lines");
    }
    if (backtrace.printed != first.printed || second.printed != first.printed + printedCondition.size()) {
        return Wrong(ending, "the lines of the log and of standard output came in another order");
    }
    const std::string error = CheckFailureLine(ending.err, expected, ToLine(first).line);
    return error.empty() ? testing::AssertionSuccess() : Wrong(ending, error);
}

} // namespace dcftest
