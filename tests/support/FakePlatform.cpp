#include "FakePlatform.h"

#include <device_property.h>
#include <dlog.h>
#include <pref.h>
#include <vell-util.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "ChildProcess.h"

namespace dcftest {

namespace {

constexpr char kReset[] = "\033[m";
constexpr char kResetAndNewline[] = "\033[m\n";
constexpr char kFormat[] = "%s: %s(%d) > %s";

std::string FormatAll(const char* format, va_list arguments) {
    va_list copy;
    va_copy(copy, arguments);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(static_cast<std::size_t>(std::max(length, 0)) + 1, '\0');
    (void)std::vsnprintf(text.data(), text.size(), format, arguments);
#pragma GCC diagnostic pop
    text.pop_back();
    return text;
}

} // namespace

std::string LogLine::Message() const {
    std::string text = buffer;
    if (text.compare(0, std::strlen(kReset), kReset) == 0) {
        text.erase(0, std::strlen(kReset));
    }
    const std::size_t tail = std::strlen(kResetAndNewline);
    if (text.size() >= tail && text.compare(text.size() - tail, tail, kResetAndNewline) == 0) {
        text.erase(text.size() - tail);
    }
    return text;
}

std::string LogLine::Text() const {
    return file + " " + function + " " + Message();
}

std::string LogBuffer(const std::string& message) {
    return kReset + message + kResetAndNewline;
}

FakePlatform& FakePlatform::Get() {
    static FakePlatform platform;
    return platform;
}

void FakePlatform::Reset() {
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
    m_atLog = nullptr;
    m_preferences.clear();
    m_prefCalls.clear();
    m_forcedGet.reset();
    m_setResult = 0;
    m_atPrefSet = nullptr;
    m_afterPrefSet = nullptr;
    m_atPrefGet = nullptr;
    m_propertyCalls.clear();
    m_propertyResult = 0;
    m_backtraces = 0;
}

std::vector<LogLine> FakePlatform::Lines() {
    const std::lock_guard lock(m_mutex);
    return m_lines;
}

std::vector<std::string> FakePlatform::Messages() {
    std::vector<std::string> messages;
    for (const LogLine& line : Lines()) {
        messages.push_back(line.Message());
    }
    return messages;
}

std::vector<std::string> FakePlatform::Texts() {
    std::vector<std::string> texts;
    for (const LogLine& line : Lines()) {
        texts.push_back(line.Text());
    }
    return texts;
}

void FakePlatform::ForgetLines() {
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
}

void FakePlatform::AtLog(std::function<void(const LogLine&)> action) {
    const std::lock_guard lock(m_mutex);
    m_atLog = std::move(action);
}

void FakePlatform::SetPreference(int group, int key, long value) {
    const std::lock_guard lock(m_mutex);
    m_preferences[{group, key}] = value;
}

std::optional<long> FakePlatform::Preference(int group, int key) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_preferences.find({group, key});
    return found == m_preferences.end() ? std::nullopt : std::optional(found->second);
}

void FakePlatform::ForcePrefGet(std::optional<long> result) {
    const std::lock_guard lock(m_mutex);
    m_forcedGet = result;
}

void FakePlatform::SetPrefSetResult(int result) {
    const std::lock_guard lock(m_mutex);
    m_setResult = result;
}

void FakePlatform::AtPrefSet(std::function<void()> action) {
    const std::lock_guard lock(m_mutex);
    m_atPrefSet = std::move(action);
}

void FakePlatform::AfterPrefSet(std::function<void(long)> action) {
    const std::lock_guard lock(m_mutex);
    m_afterPrefSet = std::move(action);
}

void FakePlatform::AtPrefGet(std::function<std::optional<long>()> answer) {
    const std::lock_guard lock(m_mutex);
    m_atPrefGet = std::move(answer);
}

std::vector<PrefCall> FakePlatform::PrefCalls() {
    const std::lock_guard lock(m_mutex);
    return m_prefCalls;
}

std::vector<FakePlatform::PropertyCall> FakePlatform::PropertyCalls() {
    const std::lock_guard lock(m_mutex);
    return m_propertyCalls;
}

void FakePlatform::SetPropertyResult(int result) {
    const std::lock_guard lock(m_mutex);
    m_propertyResult = result;
}

int FakePlatform::Backtraces() {
    const std::lock_guard lock(m_mutex);
    return m_backtraces;
}

void FakePlatform::Log(LogLine line) {
    ReportEvent({"log", std::to_string(line.logId), std::to_string(line.priority), line.tag, line.format, line.file,
                 line.function, std::to_string(line.line), line.buffer});
    std::unique_lock lock(m_mutex);
    if (const std::function<void(const LogLine&)> action = m_atLog) {
        lock.unlock(); // it may ask this platform, or throw
        action(line);
        lock.lock();
    }
    m_lines.push_back(std::move(line));
}

long FakePlatform::PrefGet(int group, int key) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_preferences.find({group, key});
    std::optional<long> forced = m_atPrefGet ? m_atPrefGet() : std::nullopt;
    forced = forced ? forced : m_forcedGet;
    const long value = forced.value_or(found == m_preferences.end() ? 0 : found->second);
    m_prefCalls.push_back({false, group, key, value});
    return value;
}

int FakePlatform::PrefSet(int group, int key, long value) {
    std::unique_lock lock(m_mutex);
    if (const std::function<void()> action = m_atPrefSet) {
        lock.unlock(); // it may ask this platform
        action();
        lock.lock();
    }
    m_prefCalls.push_back({true, group, key, value});
    if (m_setResult == 0) {
        m_preferences[{group, key}] = value;
        if (m_afterPrefSet) {
            m_afterPrefSet(value);
        }
    }
    return m_setResult;
}

int FakePlatform::DeviceSet(const PropertyCall& call) {
    const std::lock_guard lock(m_mutex);
    m_propertyCalls.push_back(call);
    return m_propertyResult;
}

void FakePlatform::Backtrace() {
    ReportEvent({"backtrace"});
    const std::lock_guard lock(m_mutex);
    ++m_backtraces;
}

} // namespace dcftest

using dcftest::FakePlatform;

extern "C" {

int __dlog_print(int logId, int priority, const char* tag, const char* format, ...) {
    dcftest::LogLine line;
    line.logId = logId;
    line.priority = priority;
    line.tag = tag;
    line.format = format;
    va_list arguments;
    va_start(arguments, format);
    if (line.format == dcftest::kFormat) {
        line.file = va_arg(arguments, const char*);
        line.function = va_arg(arguments, const char*);
        line.line = va_arg(arguments, int);
        line.buffer = va_arg(arguments, const char*);
    } else {
        line.buffer = dcftest::FormatAll(format, arguments);
    }
    va_end(arguments);
    FakePlatform::Get().Log(std::move(line));
    return 0;
}

long pref_get_long(int group, int key) {
    return FakePlatform::Get().PrefGet(group, key);
}

int pref_set_long(int group, int key, long value) {
    return FakePlatform::Get().PrefSet(group, key, value);
}

int device_set_property(int property, int value, int arg1, int arg2) {
    return FakePlatform::Get().DeviceSet({property, value, arg1, arg2});
}

void vell_print_backtrace(void) {
    FakePlatform::Get().Backtrace();
}
}
