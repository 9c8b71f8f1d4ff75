#include "host/cancel_watch.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif

void cancel_watch::set_action(const std::function<void()> &action)
{
    const std::lock_guard lock(action_mutex_);
    action_ = action;
}

void cancel_watch::cancel()
{
    cancelled_ = true;
    const std::lock_guard lock(action_mutex_);
    if (action_)
        action_();
}

#ifdef Q_OS_WIN

namespace
{

std::atomic<cancel_watch *> watch = nullptr;

BOOL WINAPI handle_console_event(DWORD event)
{
    cancel_watch *const active = watch;
    if ((event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) || active == nullptr ||
        active->cancelled())
        return FALSE;
    active->cancel();
    return TRUE;
}

} // namespace

cancel_watch::cancel_watch()
{
    watch = this;
    SetConsoleCtrlHandler(handle_console_event, TRUE);
}

cancel_watch::~cancel_watch()
{
    SetConsoleCtrlHandler(handle_console_event, FALSE);
    watch = nullptr;
}

#else

namespace
{

constexpr char stop_watching = 0;
constexpr char interrupted = 1;

/// Some launchers deliver one Ctrl-C twice; what comes this soon is no second one.
constexpr std::chrono::milliseconds repeat_time{250};

/// Reading and writing end of the pipe from the signal handler to the watching thread.
int pipe_ends[2] = {-1, -1};

extern "C" void handle_signal(int /*number*/)
{
    const int saved_errno = errno;
    const ssize_t written = write(pipe_ends[1], &interrupted, 1);
    static_cast<void>(written);
    errno = saved_errno;
}

void set_signal_handler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART; // the plug-in's reads go on
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

char read_pipe()
{
    char byte = stop_watching;
    while (read(pipe_ends[0], &byte, 1) < 0 && errno == EINTR) {
    }
    return byte;
}

void watch_pipe(cancel_watch &watch)
{
    if (read_pipe() == stop_watching)
        return;
    watch.cancel();

    using clock = std::chrono::steady_clock;
    const clock::time_point end = clock::now() + repeat_time;
    pollfd reading_end = {pipe_ends[0], POLLIN, 0};
    for (auto left = repeat_time; left.count() > 0;
         left = std::chrono::duration_cast<std::chrono::milliseconds>(end - clock::now())) {
        if (poll(&reading_end, 1, static_cast<int>(left.count())) > 0 &&
            read_pipe() == stop_watching)
            return;
    }
    set_signal_handler(SIG_DFL);
}

} // namespace

cancel_watch::cancel_watch()
{
    if (pipe(pipe_ends) != 0)
        return; // Ctrl-C keeps its usual effect.
    fcntl(pipe_ends[0], F_SETFD, FD_CLOEXEC);
    fcntl(pipe_ends[1], F_SETFD, FD_CLOEXEC);
    watcher_ = std::thread([this] { watch_pipe(*this); });
    set_signal_handler(handle_signal);
}

cancel_watch::~cancel_watch()
{
    if (!watcher_.joinable())
        return;
    // The work is done: neither a late Ctrl-C nor the repeat of an answered one may spoil the exit
    // status at the last moment.
    set_signal_handler(SIG_IGN);
    const ssize_t written = write(pipe_ends[1], &stop_watching, 1);
    static_cast<void>(written);
    watcher_.join();
    close(pipe_ends[0]);
    close(pipe_ends[1]);
}

#endif
