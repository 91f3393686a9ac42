// FakePlatform: the platform functions as the tests want them: log lines are kept, preferences live in memory, device
// properties and backtraces are counted. The functions are defined in FakePlatform.cpp, which stands in every test
// program, so they replace the host layer's. Any thread may call them; the settings are one test's.
#ifndef TESTS_SUPPORT_FAKE_PLATFORM_H
#define TESTS_SUPPORT_FAKE_PLATFORM_H

#include <array>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace dcftest {

/// One call of __dlog_print, with the arguments as they came.
struct LogLine {
    int logId = 0;
    int priority = 0;
    std::string tag;
    std::string format;
    std::string file; ///< First argument of the format, like the next three.
    std::string function;
    int line = 0;
    std::string buffer;

    /// The buffer without its escape sequences and newline.
    std::string Message() const;
    /// "CSFileList GetCount start": file, function, message.
    std::string Text() const;
};

struct PrefCall {
    bool set; ///< pref_set_long, else pref_get_long.
    int group;
    int key;
    long value; ///< The value stored or handed out.

    bool operator==(const PrefCall&) const = default;
};

class FakePlatform {
public:
    static FakePlatform& Get();

    /// As at the start of the program.
    void Reset();

    std::vector<LogLine> Lines();
    std::vector<std::string> Messages();
    /// LogLine::Text of every line.
    std::vector<std::string> Texts();
    void ForgetLines();
    /// Runs at every log line before it is kept; an empty one ends it. What it throws leaves the library's operation.
    void AtLog(std::function<void(const LogLine&)> action);

    /// Stores a preference without a call record.
    void SetPreference(int group, int key, long value);
    std::optional<long> Preference(int group, int key);
    /// From now on pref_get_long gives this whatever is stored; nullopt ends it.
    void ForcePrefGet(std::optional<long> result);
    /// From now on pref_set_long gives this and, unless it is 0, stores nothing.
    void SetPrefSetResult(int result);
    /// Runs at every pref_set_long from now on, before anything is stored; an empty one ends it.
    void AtPrefSet(std::function<void()> action);
    /// Runs with the value behind every pref_set_long that stored one; an empty one ends it.
    void AfterPrefSet(std::function<void(long)> action);
    /// Asked at every pref_get_long for a value to hand out instead; an empty one ends it.
    void AtPrefGet(std::function<std::optional<long>()> answer);
    std::vector<PrefCall> PrefCalls();

    using PropertyCall = std::array<int, 4>;
    std::vector<PropertyCall> PropertyCalls();
    void SetPropertyResult(int result);
    int Backtraces();

    // For the platform functions.

    void Log(LogLine line);
    long PrefGet(int group, int key);
    int PrefSet(int group, int key, long value);
    int DeviceSet(const PropertyCall& call);
    void Backtrace();

private:
    std::mutex m_mutex;
    std::vector<LogLine> m_lines;
    std::function<void(const LogLine&)> m_atLog;
    std::map<std::pair<int, int>, long> m_preferences;
    std::vector<PrefCall> m_prefCalls;
    std::optional<long> m_forcedGet;
    int m_setResult = 0;
    std::function<void()> m_atPrefSet;
    std::function<void(long)> m_afterPrefSet;
    std::function<std::optional<long>()> m_atPrefGet;
    std::vector<PropertyCall> m_propertyCalls;
    int m_propertyResult = 0;
    int m_backtraces = 0;
};

/// The series value's place.
inline constexpr int kSeriesGroup = 3;
inline constexpr int kSeriesKey = 512;

/// The buffer that the library builds for a message.
std::string LogBuffer(const std::string& message);

} // namespace dcftest

#endif
