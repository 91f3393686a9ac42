#include "ChildProcess.h"

#include <gtest/gtest.h>
#include <stdio_ext.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace dcftest {

namespace {

int g_eventFile = -1; // set in a child alone

// A file in memory: unlike a pipe it never blocks the child, whatever the amount.
int MemoryFile(const char* name) {
    const int fd = memfd_create(name, MFD_CLOEXEC);
    if (fd < 0) {
        throw std::runtime_error("memfd_create");
    }
    return fd;
}

std::string TakeAll(int fd) {
    std::string text;
    std::array<char, 4096> part{};
    off_t offset = 0;
    for (;;) {
        const ssize_t count = ::pread(fd, part.data(), part.size(), offset);
        if (count <= 0) {
            break;
        }
        text.append(part.data(), static_cast<std::size_t>(count));
        offset += count;
    }
    (void)::close(fd);
    return text;
}

std::string Field(const std::string& text) {
    return std::to_string(text.size()) + ":" + text;
}

std::string TakeField(const std::string& text, std::size_t& at) {
    const std::size_t colon = text.find(':', at);
    const std::size_t size = std::stoul(text.substr(at, colon - at));
    at = colon + 1 + size;
    return text.substr(colon + 1, size);
}

std::vector<ChildEvent> ParseEvents(const std::string& text) {
    std::vector<ChildEvent> events;
    for (std::size_t at = 0; at < text.size();) {
        ChildEvent event;
        event.printed = std::stoul(TakeField(text, at));
        const std::size_t count = std::stoul(TakeField(text, at));
        for (std::size_t i = 0; i < count; ++i) {
            event.fields.push_back(TakeField(text, at));
        }
        events.push_back(std::move(event));
    }
    return events;
}

[[noreturn]] void RunAndExit(const std::function<void()>& piece, int out, int err, int events) {
    const rlimit noCore{0, 0};
    (void)setrlimit(RLIMIT_CORE, &noCore);
    (void)dup2(out, STDOUT_FILENO);
    (void)dup2(err, STDERR_FILENO);
    static std::array<char, 65536> buffer;
    (void)setvbuf(stdout, buffer.data(), _IOFBF, buffer.size());
    g_eventFile = events;
    int status = 0;
    try {
        piece();
        status = ::testing::Test::HasFailure() ? kChildFailedExpectation : 0;
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "the piece threw: %s\n", error.what());
        status = kChildThrew;
    }
    std::cout.flush();
    (void)std::fflush(nullptr);
    ::_exit(status);
}

// An emulator of a processor says so, in a last line of its own, when its program ends by a signal.
std::string WithoutEmulatorsLine(std::string err) {
#ifdef DCF_TEST_EMULATED
    const std::size_t line = err.rfind("qemu: uncaught target signal ");
    if (line != std::string::npos && err.find('\n', line) == err.size() - 1) {
        err.erase(line);
    }
#endif
    return err;
}

} // namespace

std::string Ending::Describe() const {
    return "signal " + std::to_string(signal) + ", status " + std::to_string(status) + (refused ? ", refused" : "") +
           "\nstandard output: " + out + "\nstandard error: " + err;
}

Ending RunInChild(const std::function<void()>& piece) {
    const int out = MemoryFile("out");
    const int err = MemoryFile("err");
    const int events = MemoryFile("events");
    std::cout.flush();
    (void)std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::runtime_error("fork");
    }
    if (child == 0) {
        RunAndExit(piece, out, err, events);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    Ending ending;
    ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    ending.refused = WIFEXITED(status) && ending.status == kChildRefused;
    ending.out = TakeAll(out);
    ending.err = WithoutEmulatorsLine(TakeAll(err));
    ending.events = ParseEvents(TakeAll(events));
    return ending;
}

void ReportEvent(const std::vector<std::string>& fields) {
    if (g_eventFile < 0) {
        return;
    }
    struct stat status {};
    (void)::fstat(STDOUT_FILENO, &status);
    const auto printed = static_cast<std::size_t>(status.st_size) + __fpending(stdout);
    std::string text = Field(std::to_string(printed)) + Field(std::to_string(fields.size()));
    for (const std::string& field : fields) {
        text += Field(field);
    }
    if (::write(g_eventFile, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        std::abort();
    }
}

void RefuseInChild(const std::string& why) {
    (void)std::fprintf(stderr, "refused: %s\n", why.c_str());
    ::_exit(kChildRefused);
}

} // namespace dcftest
