// Running dcfctl; see the header.
#include "Cli.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace clitest {
namespace {

constexpr int kCannotStart = 125;

struct Pipe {
    int readEnd = -1;
    int writeEnd = -1;

    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe2");
        }
        readEnd = ends[0];
        writeEnd = ends[1];
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        Close(readEnd);
        Close(writeEnd);
    }
    static void Close(int& end) {
        if (end >= 0) {
            close(end);
            end = -1;
        }
    }
};

/// The file of the preferences, which no test shares with another or with the machine; removed at the end.
const std::string& Preferences() {
    static const class Scratch {
    public:
        Scratch() {
            if (mkdtemp(m_folder.data()) == nullptr) {
                throw std::system_error(errno, std::generic_category(), m_folder);
            }
            m_file = m_folder + "/preferences";
        }
        Scratch(const Scratch&) = delete;
        Scratch& operator=(const Scratch&) = delete;
        ~Scratch() {
            std::error_code ignored; // nothing depends on it
            std::filesystem::remove_all(m_folder, ignored);
        }
        [[nodiscard]] const std::string& File() const {
            return m_file;
        }

    private:
        std::string m_folder = "/tmp/dcfctl-XXXXXX";
        std::string m_file;
    } scratch;
    return scratch.File();
}

void SetEnvironment(const Options& options) {
    for (const char* name : {"DCF_CARD", "DCF_LOG", "NO_COLOR", "TERM", "DCF_PREFERENCES"}) {
        unsetenv(name);
    }
    setenv("DCF_PREFERENCES", Preferences().c_str(), 1);
    const char* hostile = std::getenv("DCF_TEST_LOCALE");
    setenv("LC_ALL", hostile != nullptr ? hostile : "C.UTF-8", 1);
    for (const auto& [name, value] : options.environment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

[[noreturn]] void Execute(const Words& arguments) {
    std::vector<char*> argv;
    std::string program = DCFCTL_PROGRAM;
    argv.push_back(program.data());
    Words copies = arguments;
    for (std::string& copy : copies) {
        argv.push_back(copy.data());
    }
    argv.push_back(nullptr);
    execv(DCFCTL_PROGRAM, argv.data());
    _exit(kCannotStart);
}

[[noreturn]] void RunChild(const Words& arguments, const Options& options, int in, int out, int err) {
    const int input = options.inFile.empty() ? in : open(options.inFile.c_str(), O_RDONLY | O_CLOEXEC);
    const int output =
        options.outFile.empty() ? out : open(options.outFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (input < 0 || output < 0 || dup2(input, 0) < 0 || dup2(output, 1) < 0 || dup2(err, 2) < 0) {
        _exit(kCannotStart);
    }
    RunAsIs(arguments, options);
}

/// Feeds and drains until both outputs have ended.
void Exchange(std::string input, int& in, int out, int err, Outcome& run) {
    std::array<pollfd, 3> waiting = {{{in, POLLOUT, 0}, {out, POLLIN, 0}, {err, POLLIN, 0}}};
    const auto drain = [](pollfd& entry, std::string& text) {
        std::array<char, 1U << 16U> buffer{};
        const ssize_t length = read(entry.fd, buffer.data(), buffer.size());
        if (length > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(length));
        } else if (length == 0 || errno != EINTR) {
            entry.fd = -1;
        }
    };
    while (waiting[1].fd >= 0 || waiting[2].fd >= 0) {
        if (input.empty() && waiting[0].fd >= 0) {
            waiting[0].fd = -1;
            Pipe::Close(in);
        }
        if (poll(waiting.data(), waiting.size(), -1) < 0) {
            continue;
        }
        if (waiting[0].fd >= 0 && waiting[0].revents != 0) {
            const ssize_t length = write(in, input.data(), input.size());
            input.erase(0, length > 0 ? static_cast<std::size_t>(length) : input.size());
        }
        if (waiting[1].fd >= 0 && waiting[1].revents != 0) {
            drain(waiting[1], run.out);
        }
        if (waiting[2].fd >= 0 && waiting[2].revents != 0) {
            drain(waiting[2], run.err);
        }
    }
}

std::string Describe(const std::filesystem::path& path) {
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
    std::ostringstream text;
    text << path.string() << ' ' << std::oct << info.st_mode << std::dec << ' ' << info.st_uid << ' '
         << (S_ISDIR(info.st_mode) ? 0 : info.st_size) << ' ' << info.st_mtim.tv_sec << '.' << info.st_mtim.tv_nsec;
    if (S_ISLNK(info.st_mode)) {
        text << " -> " << std::filesystem::read_symlink(path).string();
    }
    return text.str();
}

} // namespace

std::string Outcome::Describe() const {
    return "exit " + std::to_string(exit) + ", signal " + std::to_string(signal) + "\nout:\n" + out + "\nerr:\n" + err;
}

Outcome Dcfctl(const Words& arguments, const Options& options) {
    PrepareToRun();
    std::signal(SIGPIPE, SIG_IGN); // a child that does not read its input is no reason to end
    Pipe in;
    Pipe out;
    Pipe err;
    const pid_t child = fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        RunChild(arguments, options, in.readEnd, out.writeEnd, err.writeEnd);
    }
    Pipe::Close(in.readEnd);
    Pipe::Close(out.writeEnd);
    Pipe::Close(err.writeEnd);
    Outcome run;
    Exchange(options.input, in.writeEnd, out.readEnd, err.readEnd, run);
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    run.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    run.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (run.exit == kCannotStart) {
        throw std::runtime_error("dcfctl could not be started as the test wants it");
    }
    return run;
}

void PrepareToRun() {
    (void)Preferences(); // the first call makes the folder
}

void RunAsIs(const Words& arguments, const Options& options) {
    for (const int descriptor : options.closed) {
        close(descriptor);
    }
    if (!options.folder.empty() && chdir(options.folder.c_str()) != 0) {
        _exit(kCannotStart);
    }
    if (options.user.has_value() &&
        (setgroups(0, nullptr) != 0 || setgid(*options.user) != 0 || setuid(*options.user) != 0)) {
        _exit(kCannotStart);
    }
    SetEnvironment(options);
    Execute(arguments);
}

Outcome OnCard(const std::string& root, const Words& arguments, const Options& options) {
    Words all = {"--card", root};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return Dcfctl(all, options);
}

Outcome Shell(const std::string& root, const Words& lines, const Words& arguments) {
    Words all = {"shell"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    Options options;
    options.input = Joined(lines);
    return OnCard(root, all, options);
}

std::string ErrorLine(const std::string& text) {
    return "dcfctl: error: " + text + "\n";
}

std::string WarningLine(const std::string& text) {
    return "dcfctl: warning: " + text + "\n";
}

std::string ShownTime(const std::string& time) {
    return kHasTimes ? time : "-";
}

Words Lines(const std::string& text) {
    Words lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string Joined(const Words& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

Words Snapshot(const std::string& folder) {
    Words entries = {Describe(folder)};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        entries.push_back(Describe(entry.path()));
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string FromBase64(const std::string& text) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned bits = 0;
    unsigned count = 0;
    for (const char c : text.substr(0, text.find('='))) {
        bits = (bits << 6U) | static_cast<unsigned>(alphabet.find(c));
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>((bits >> count) & 0xffU);
        }
    }
    return bytes;
}

} // namespace clitest
