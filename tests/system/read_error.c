/* Preloaded: reading the file READ_ERROR_PATH fails with EIO in the READ_ERROR_LENGTH bytes from
 * READ_ERROR_PLACE on, as on a disk with bad sectors. Each failure adds a line to
 * READ_ERROR_REPORT. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <unistd.h>

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

static int is_broken(int file)
{
    char link[64], path[PATH_MAX];
    const char *broken = getenv("READ_ERROR_PATH");
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = broken ? readlink(link, path, sizeof path) : -1;
    return length > 0 && (size_t)length == strlen(broken) && memcmp(path, broken, length) == 0;
}

/* How much can be read before the fault; -1 and EIO inside of it. */
static ssize_t readable(int file, off_t from, size_t wanted)
{
    if (!is_broken(file))
        return (ssize_t)wanted;
    const off_t place = atoll(getenv("READ_ERROR_PLACE"));
    const off_t end = place + atoll(getenv("READ_ERROR_LENGTH"));
    if (from >= end || from + (off_t)wanted <= place)
        return (ssize_t)wanted;
    if (from < place)
        return (ssize_t)(place - from);
    const int report = open(getenv("READ_ERROR_REPORT"), O_WRONLY | O_APPEND | O_CREAT, 0666);
    if (report >= 0 && write(report, "\n", 1) == 1)
        close(report);
    errno = EIO;
    return -1;
}

ssize_t read(int file, void *buffer, size_t wanted)
{
    const ssize_t part = readable(file, lseek(file, 0, SEEK_CUR), wanted);
    return part < 0 ? -1 : NEXT(read)(file, buffer, (size_t)part);
}

ssize_t pread64(int file, void *buffer, size_t wanted, off64_t from)
{
    const ssize_t part = readable(file, from, wanted);
    return part < 0 ? -1 : NEXT(pread64)(file, buffer, (size_t)part, from);
}

ssize_t pread(int file, void *buffer, size_t wanted, off_t from)
{
    return pread64(file, buffer, wanted, from);
}

ssize_t copy_file_range(int from, off64_t *from_place, int to, off64_t *to_place, size_t wanted,
                        unsigned flags)
{
    const ssize_t part =
        readable(from, from_place ? *from_place : lseek(from, 0, SEEK_CUR), wanted);
    return part < 0 ? -1
                    : NEXT(copy_file_range)(from, from_place, to, to_place, (size_t)part, flags);
}

ssize_t sendfile64(int to, int from, off64_t *from_place, size_t wanted)
{
    const ssize_t part =
        readable(from, from_place ? *from_place : lseek(from, 0, SEEK_CUR), wanted);
    return part < 0 ? -1 : NEXT(sendfile64)(to, from, from_place, (size_t)part);
}

ssize_t sendfile(int to, int from, off_t *from_place, size_t wanted)
{
    return sendfile64(to, from, from_place, wanted);
}

/* Sharing blocks would copy the fault unread. */
int ioctl(int file, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (request == _IOW(0x94, 9, int) && is_broken((int)(intptr_t)argument)) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return NEXT(ioctl)(file, request, argument);
}
