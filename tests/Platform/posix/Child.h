#pragma once

#include <csignal>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Another process that runs `body`; its result is its exit code.
class Child {
public:
    explicit Child(const std::function<int()>& body) : process(fork()) {
        if (process != 0) return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        try {
            _exit(body());
        } catch (...) {
            _exit(99);
        }
    }
    /// Its exit code, -1 when it was killed.
    int Wait() const {
        int status = 0;
        waitpid(process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void Kill() const {
        kill(process, SIGKILL);
        Wait();
    }

private:
    pid_t process;
};
