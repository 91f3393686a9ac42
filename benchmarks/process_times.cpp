// Runs whole programs and tells what they cost: process_times ROUNDS COMMAND... -- COMMAND... -- ...
// Each round runs every command once, standard output to /dev/null, so that a slow minute of the machine meets them
// all. For each command one line: median of the wall time and of the processor time in milliseconds, largest peak
// memory in KiB. Ends with 1 when a command fails.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

struct Command {
    std::vector<char*> words;
    std::vector<double> wall;
    std::vector<double> processor;
    long peak = 0;
};

std::vector<Command> ReadCommands(int argc, char** argv) {
    std::vector<Command> commands(1);
    for (int word = 2; word < argc; ++word) {
        if (std::strcmp(argv[word], "--") == 0) {
            commands.emplace_back();
        } else {
            commands.back().words.push_back(argv[word]);
        }
    }
    for (Command& command : commands) {
        command.words.push_back(nullptr);
    }
    return commands;
}

double Milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

bool Run(Command& command, const posix_spawn_file_actions_t& quiet) {
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (posix_spawnp(&child, command.words[0], &quiet, nullptr, command.words.data(), environ) != 0) {
        return false;
    }
    int status = 0;
    rusage usage = {};
    if (wait4(child, &status, 0, &usage) != child || status != 0) {
        return false;
    }
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    command.wall.push_back(wall.count());
    command.processor.push_back(Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime));
    command.peak = std::max(command.peak, usage.ru_maxrss);
    return true;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 2 ? std::atoi(argv[1]) : 0;
    std::vector<Command> commands = ReadCommands(argc, argv);
    const bool complete =
        std::all_of(commands.begin(), commands.end(), [](const Command& command) { return command.words.size() > 1; });
    if (rounds < 1 || !complete) {
        std::fprintf(stderr, "usage: process_times ROUNDS COMMAND... -- COMMAND... -- ...\n");
        return 2;
    }
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (int round = 0; round < rounds; ++round) {
        for (Command& command : commands) {
            if (!Run(command, quiet)) {
                std::fprintf(stderr, "process_times: %s failed\n", command.words[0]);
                return 1;
            }
        }
    }
    for (const Command& command : commands) {
        std::printf("%.2f\t%.2f\t%ld\n", Median(command.wall), Median(command.processor), command.peak);
    }
    return 0;
}
