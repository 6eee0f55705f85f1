// SPDX-License-Identifier: MIT
#include "Child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

extern char** environ;

namespace bench {

namespace {

double seconds(const timeval& time) {
    return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
}

// Linux and others count kilobytes.
#ifdef __APPLE__
constexpr double peakUnit = 1;
#else
constexpr double peakUnit = 1024;
#endif

}  // namespace

ChildUse runChild(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);

    ChildUse use;
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int problem =
        posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0) return use;
    int status = 0;
    rusage usage = {};
    if (wait4(child, &status, 0, &usage) != child) return use;
    use.elapsedSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    use.hasSucceeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    use.processorSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    use.peakBytes = double(usage.ru_maxrss) * peakUnit;
    return use;
}

}  // namespace bench
