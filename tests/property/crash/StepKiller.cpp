#include "tests/property/crash/StepKiller.h"

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <string_view>
#include <sys/uio.h>
#include <unistd.h>

// This file stands between the program, the C++ library included, and the C library: the functions below have
// the names of the C library's and call those.

namespace {

std::atomic<int> g_stepsLeft = 0; // 0: no step kills
char g_folders[2][4096];

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(
        ::dlsym(RTLD_NEXT, name)); // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
}

bool isBelowFolder(const char* path) {
    const std::string_view text = path;
    return text.starts_with(g_folders[0]) || text.starts_with(g_folders[1]);
}

bool isBelowFolder(int file) {
    char path[4096] = {};
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    return ::readlink(link, path, sizeof path - 1) > 0 && isBelowFolder(path);
}

template <typename Where>
bool isTheLastStep(Where where) {
    return g_stepsLeft > 0 && isBelowFolder(where) && --g_stepsLeft == 0;
}

void die() { ::raise(SIGKILL); }

// The step is done, and then it was the last.
template <typename Where, typename Step>
auto done(Where where, Step step) {
    const bool isLast = isTheLastStep(where);
    auto result = step();
    if (isLast)
        die();
    return result;
}

} // namespace

void killAtStep(int step, const std::string& folder, const std::string& otherFolder) {
    std::snprintf(g_folders[0], sizeof g_folders[0], "%s", folder.c_str());
    std::snprintf(g_folders[1], sizeof g_folders[1], "%s", otherFolder.c_str());
    g_stepsLeft = step;
}

extern "C" {

FILE* fopen64(const char* path, const char* mode) {
    return done(path, [&] { return next<decltype(&::fopen64)>("fopen64")(path, mode); });
}

FILE* fopen(const char* path, const char* mode) {
    return done(path, [&] { return next<decltype(&::fopen)>("fopen")(path, mode); });
}

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return done(path, [&] { return next<int (*)(const char*, int, mode_t)>("open")(path, flags, mode); });
}

ssize_t write(int file, const void* bytes, size_t size) {
    const auto original = next<decltype(&::write)>("write");
    if (isTheLastStep(file)) {
        static_cast<void>(original(file, bytes, size / 2));
        die();
    }
    return original(file, bytes, size);
}

ssize_t writev(int file, const iovec* pieces, int count) {
    if (isTheLastStep(file)) {
        const iovec half{pieces[0].iov_base, pieces[0].iov_len / 2};
        static_cast<void>(next<decltype(&::writev)>("writev")(file, &half, 1));
        die();
    }
    return next<decltype(&::writev)>("writev")(file, pieces, count);
}

int ftruncate(int file, off_t size) {
    return done(file, [&] { return next<decltype(&::ftruncate)>("ftruncate")(file, size); });
}

int fsync(int file) {
    return done(file, [&] { return next<decltype(&::fsync)>("fsync")(file); });
}

int rename(const char* from, const char* to) {
    return done(from, [&] { return next<decltype(&::rename)>("rename")(from, to); });
}

int unlink(const char* path) {
    return done(path, [&] { return next<decltype(&::unlink)>("unlink")(path); });
}

} // extern "C"
