// run_measured COMMAND [ARGUMENT...]: runs the command. The last line on standard error is
// its seconds, its seconds of processor time and its greatest resident memory in KiB.
//
// A program of its own, because a process starts with the memory peak of the one that started it:
// under a script every small program would seem as large as the script's interpreter.

#define _DEFAULT_SOURCE

#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static double now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

static double processor_seconds(const struct rusage *usage)
{
    return (double)(usage->ru_utime.tv_sec + usage->ru_stime.tv_sec) +
           (double)(usage->ru_utime.tv_usec + usage->ru_stime.tv_usec) / 1e6;
}

static long kibibytes(const struct rusage *usage)
{
#ifdef __APPLE__
    return usage->ru_maxrss / 1024;
#else
    return usage->ru_maxrss;
#endif
}

int main(int argument_count, char **arguments)
{
    if (argument_count < 2) {
        fputs("usage: run_measured COMMAND [ARGUMENT...]\n", stderr);
        return 2;
    }
    const double start = now();
    const pid_t child = fork();
    if (child == 0) {
        execvp(arguments[1], arguments + 1);
        perror(arguments[1]);
        _exit(127);
    }
    int status = 0;
    struct rusage usage;
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        perror("run_measured");
        return 1;
    }
    const double seconds = now() - start;
    fprintf(stderr, "%.6f %.6f %ld\n", seconds, processor_seconds(&usage), kibibytes(&usage));
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
