#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

/// Waits for Ctrl-C (and for the request to terminate) while the plug-in keeps the main thread
/// busy. The first is answered in a thread of its own; a second Ctrl-C kills the process at once.
/// One object at a time.
class cancel_watch
{
public:
    cancel_watch();
    ~cancel_watch();
    cancel_watch(const cancel_watch &) = delete;
    cancel_watch &operator=(const cancel_watch &) = delete;

    bool cancelled() const { return cancelled_; }

    /// What to call, from another thread, on Ctrl-C; an empty function takes it back. It is not
    /// called for a Ctrl-C that came earlier: ask cancelled() after setting it.
    void set_action(const std::function<void()> &action);

    /// Answers Ctrl-C; called by the system's notification.
    void cancel();

private:
    std::atomic<bool> cancelled_ = false;
    std::mutex action_mutex_;
    std::function<void()> action_;
    std::thread watcher_; ///< not used on Windows, which brings its own
};
