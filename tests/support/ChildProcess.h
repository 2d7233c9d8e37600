#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace support {

// A program that runs beside the test and ends with it. What it prints can be waited for.
class ChildProcess {
  public:
    explicit ChildProcess(const std::vector<std::string>& arguments) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            return;
        }
        pid_ = fork();
        if (pid_ == 0) {
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            std::vector<char*> list;
            for (const std::string& argument : arguments) {
                list.push_back(const_cast<char*>(argument.c_str()));
            }
            list.push_back(nullptr);
            execv(list[0], list.data());
            _exit(127);
        }
        close(ends[1]);
        output_ = ends[0];
    }
    ~ChildProcess() {
        Signal(SIGKILL);
        Wait();
        close(output_);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void Signal(int number) const {
        if (pid_ > 0) {
            kill(pid_, number);
        }
    }

    pid_t Pid() const { return pid_; }

    // The exit code, or 128 and the signal that ended it.
    int Wait() {
        if (pid_ > 0) {
            int status = 0;
            waitpid(pid_, &status, 0);
            pid_ = 0;
            code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        return code_;
    }

    // Reads until the text has come, for at most so many seconds. Tells whether it has.
    bool Printed(const std::string& text, int seconds = 20) {
        for (int tenths = 0; tenths < seconds * 10; ++tenths) {
            pollfd ready{output_, POLLIN, 0};
            if (said_.find(text) != std::string::npos) {
                return true;
            }
            if (poll(&ready, 1, 100) > 0) {
                char buffer[4096];
                const ssize_t count = read(output_, buffer, sizeof buffer);
                if (count <= 0) {
                    break;
                }
                said_.append(buffer, static_cast<std::size_t>(count));
            }
        }
        return said_.find(text) != std::string::npos;
    }
    const std::string& Said() const { return said_; }

  private:
    pid_t pid_ = 0;
    int output_ = -1;
    int code_ = -1;
    std::string said_;
};

}  // namespace support
