// Cli: runs the built dcfctl the way a person or a script does, and brings back what it wrote and how it ended. The
// environment is the test's own, but for what Options asks for. One thread.
#ifndef TESTS_CLI_CLI_H
#define TESTS_CLI_CLI_H

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace clitest {

/// The exit codes, as the tool promises them.
enum Exit : int {
    kSuccess = 0,
    kFindings = 1,
    kUsage = 2,
    kRefused = 3,
    kCardUnreadable = 4,
    kPartial = 5,
    kIncomplete = 6,
};

struct Options {
    std::string input{};                              ///< What stands on standard input.
    std::map<std::string, std::string> environment{}; ///< Beside the test's own.
    std::string folder{};                             ///< Where it runs; the test's own when empty.
    std::optional<unsigned> user{};                   ///< Runs as another user.
    std::vector<int> closed{};                        ///< Descriptors that are closed from the start.
    std::string inFile{};                             ///< Standard input comes from there instead.
    std::string outFile{};                            ///< Standard output goes there instead of into a pipe.
};

struct Outcome {
    int exit = -1;  ///< Exit code; -1 when a signal ended it.
    int signal = 0; ///< That signal.
    std::string out{};
    std::string err{};

    /// Everything, for a failure message.
    [[nodiscard]] std::string Describe() const;
};

using Words = std::vector<std::string>;

/// Runs dcfctl with these arguments to its end.
[[nodiscard]] Outcome Dcfctl(const Words& arguments, const Options& options = {});

/// Makes what every run shares. Called before forking, so that this process clears it away and not the child.
void PrepareToRun();

/// In a child process: becomes dcfctl, with the streams that are there.
[[noreturn]] void RunAsIs(const Words& arguments, const Options& options);

/// Runs it over a card: "--card ROOT" and the arguments.
[[nodiscard]] Outcome OnCard(const std::string& root, const Words& arguments, const Options& options = {});

/// Runs its shell over a card with these lines.
[[nodiscard]] Outcome Shell(const std::string& root, const Words& lines, const Words& arguments = {});

/// "dcfctl: error: TEXT\n", and the same with "warning".
[[nodiscard]] std::string ErrorLine(const std::string& text);
[[nodiscard]] std::string WarningLine(const std::string& text);

/// The time of a file as text shows it: "-", which means unknown, in a build whose library takes times from where a
/// workstation's file systems have none (DCF_ENTRY_TIME).
[[nodiscard]] std::string ShownTime(const std::string& time);
#ifdef DCF_ENTRY_TIME_DIRENT
inline constexpr bool kHasTimes = false;
#else
inline constexpr bool kHasTimes = true;
#endif

/// Whether the dcfctl that is tested has the EXIF collector.
#ifdef DCFCTL_HAVE_EXIF
inline constexpr bool kHasExif = true;
#else
inline constexpr bool kHasExif = false;
#endif

/// What show says last of a file that tells nothing of itself.
inline constexpr const char* kNoMetadata = kHasExif ? "  metadata   -" : "  metadata   not in this build";

/// The text in lines, without their ends.
[[nodiscard]] Words Lines(const std::string& text);
[[nodiscard]] std::string Joined(const Words& lines);

/// Everything below a folder: name, kind, mode, size, modification time to the nanosecond, target of a link.
[[nodiscard]] Words Snapshot(const std::string& folder);

[[nodiscard]] std::string ReadFile(const std::string& path);

[[nodiscard]] std::string FromBase64(const std::string& text);

} // namespace clitest

#endif
