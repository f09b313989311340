// SPDX-License-Identifier: Apache-2.0
// Preloaded into a program: makes the n-th system call of a kind fail. From main on: before it nobody can be
// told.
//
//   TORKA_FAULT_KIND     open, read, write, rename, sync, socket or memory
//   TORKA_FAULT_NTH      the call that fails, from 1; 0 for none
//   TORKA_FAULT_ERROR    its error number; without it a usual one of the kind
//   TORKA_FAULT_LASTING  when set, all later calls fail too
//   TORKA_FAULT_STATE    a file of 16 bytes, shared with the processes that the program starts by fork: the
//   calls that
//                        were counted, and those that failed, as 64-bit numbers
//
// Messages on standard error never fail. Of the memory, only what the program and the C++ library ask for
// fails: libraries in C have their own ways to end.

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <link.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

enum Kind { noKind, openKind, readKind, writeKind, renameKind, syncKind, socketKind, memoryKind };

static const struct {
    const char* name;
    int error;
} kinds[] = {{"", 0},       {"open", EMFILE},         {"read", EIO},     {"write", ENOSPC}, {"rename", EIO},
             {"sync", EIO}, {"socket", ECONNREFUSED}, {"memory", ENOMEM}};

static struct {
    uint64_t counted;
    uint64_t failed;
} nowhere, *state = &nowhere;
static enum Kind kind = noKind;
static uint64_t nth;
static int error;
static int isLasting;
static struct { uintptr_t from, to; } ours[2]; // the program, the C++ library

static int fails(enum Kind called) {
    if (called != kind) {
        return 0;
    }
    const uint64_t count = __atomic_add_fetch(&state->counted, 1, __ATOMIC_RELAXED);
    if (nth == 0 || count < nth || (count > nth && !isLasting)) {
        return 0;
    }
    __atomic_add_fetch(&state->failed, 1, __ATOMIC_RELAXED);
    errno = error;
    return 1;
}

static int isOurs(const void* caller) {
    const uintptr_t at = (uintptr_t)caller;
    return (at >= ours[0].from && at < ours[0].to) || (at >= ours[1].from && at < ours[1].to);
}

static int noteRange(struct dl_phdr_info* info, size_t size, void* data) {
    (void)size;
    (void)data;
    const int which = info->dlpi_name[0] == '\0' ? 0 : strstr(info->dlpi_name, "libstdc++") != NULL ? 1 : 2;
    for (int i = 0; which < 2 && i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_LOAD && (info->dlpi_phdr[i].p_flags & PF_X) != 0) {
            ours[which].from = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr;
            ours[which].to = ours[which].from + info->dlpi_phdr[i].p_memsz;
        }
    }
    return 0;
}

static void arm(void) {
    const char* name = getenv("TORKA_FAULT_KIND");
    const char* file = getenv("TORKA_FAULT_STATE");
    if (name == NULL || file == NULL) {
        return;
    }
    const int opened = open(file, O_RDWR | O_CLOEXEC);
    void* shared = mmap(NULL, sizeof *state, PROT_READ | PROT_WRITE, MAP_SHARED, opened, 0);
    if (opened < 0 || shared == MAP_FAILED) {
        abort();
    }
    close(opened);
    state = shared;
    const char* number = getenv("TORKA_FAULT_NTH");
    nth = number == NULL ? 0 : strtoull(number, NULL, 10);
    isLasting = getenv("TORKA_FAULT_LASTING") != NULL;
    dl_iterate_phdr(noteRange, NULL);
    for (enum Kind each = openKind; each <= memoryKind; ++each) {
        if (strcmp(kinds[each].name, name) == 0) {
            const char* chosen = getenv("TORKA_FAULT_ERROR");
            error = chosen == NULL ? kinds[each].error : atoi(chosen);
            kind = each;
        }
    }
}

typedef int (*Main)(int, char**, char**);
static Main program;

static int armedMain(int argc, char** argv, char** environment) {
    arm();
    return program(argc, argv, environment);
}

int __libc_start_main(Main entry, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*loaderFini)(void), void* stackEnd) {
    int (*real)(Main, int, char**, void (*)(void), void (*)(void), void (*)(void), void*) =
        dlsym(RTLD_NEXT, "__libc_start_main");
    program = entry;
    return real(armedMain, argc, argv, init, fini, loaderFini, stackEnd);
}

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

// The mode belongs only to calls that create.
#define OPEN(name, real, ...)                                                                                \
    va_list rest;                                                                                            \
    va_start(rest, flags);                                                                                   \
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;                     \
    va_end(rest);                                                                                            \
    return fails(openKind) ? -1 : real(__VA_ARGS__, flags, mode)

int open(const char* path, int flags, ...) { OPEN(open, REAL(open), path); }
int open64(const char* path, int flags, ...) { OPEN(open64, REAL(open64), path); }
int openat(int folder, const char* path, int flags, ...) { OPEN(openat, REAL(openat), folder, path); }
int openat64(int folder, const char* path, int flags, ...) { OPEN(openat64, REAL(openat64), folder, path); }
int __open_2(const char* path, int flags) { return open(path, flags); }
int __open64_2(const char* path, int flags) { return open64(path, flags); }
int __openat_2(int folder, const char* path, int flags) { return openat(folder, path, flags); }
int __openat64_2(int folder, const char* path, int flags) { return openat64(folder, path, flags); }
FILE* fopen(const char* path, const char* how) { return fails(openKind) ? NULL : REAL(fopen)(path, how); }
FILE* fopen64(const char* path, const char* how) { return fails(openKind) ? NULL : REAL(fopen64)(path, how); }
int mkostemp(char* path, int flags) { return fails(openKind) ? -1 : REAL(mkostemp)(path, flags); }
int mkostemp64(char* path, int flags) { return fails(openKind) ? -1 : REAL(mkostemp64)(path, flags); }
int mkstemp(char* path) { return fails(openKind) ? -1 : REAL(mkstemp)(path); }
int mkstemp64(char* path) { return fails(openKind) ? -1 : REAL(mkstemp64)(path); }
char* mkdtemp(char* path) { return fails(openKind) ? NULL : REAL(mkdtemp)(path); }
int mkdir(const char* path, mode_t mode) { return fails(openKind) ? -1 : REAL(mkdir)(path, mode); }

ssize_t read(int file, void* to, size_t size) { return fails(readKind) ? -1 : REAL(read)(file, to, size); }
ssize_t __read_chk(int file, void* to, size_t size, size_t room) {
    (void)room;
    return read(file, to, size);
}
ssize_t pread(int file, void* to, size_t size, off_t at) {
    return fails(readKind) ? -1 : REAL(pread)(file, to, size, at);
}
ssize_t write(int file, const void* from, size_t size) {
    return file != STDERR_FILENO && fails(writeKind) ? -1 : REAL(write)(file, from, size);
}
ssize_t writev(int file, const struct iovec* parts, int count) {
    return file != STDERR_FILENO && fails(writeKind) ? -1 : REAL(writev)(file, parts, count);
}
int ftruncate(int file, off_t size) { return fails(writeKind) ? -1 : REAL(ftruncate)(file, size); }
int rename(const char* from, const char* to) { return fails(renameKind) ? -1 : REAL(rename)(from, to); }
int renameat(int fromFolder, const char* from, int toFolder, const char* to) {
    return fails(renameKind) ? -1 : REAL(renameat)(fromFolder, from, toFolder, to);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    return fails(renameKind) ? -1 : REAL(renameat2)(fromFolder, from, toFolder, to, flags);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
    return fails(renameKind) ? -1 : REAL(linkat)(fromFolder, from, toFolder, to, flags);
}
int fsync(int file) { return fails(syncKind) ? -1 : REAL(fsync)(file); }
int fdatasync(int file) { return fails(syncKind) ? -1 : REAL(fdatasync)(file); }
int socket(int domain, int type, int protocol) {
    return fails(socketKind) ? -1 : REAL(socket)(domain, type, protocol);
}
int connect(int file, const struct sockaddr* address, socklen_t size) {
    return fails(socketKind) ? -1 : REAL(connect)(file, address, size);
}
ssize_t send(int file, const void* from, size_t size, int flags) {
    return fails(socketKind) ? -1 : REAL(send)(file, from, size, flags);
}
ssize_t recv(int file, void* to, size_t size, int flags) {
    return fails(socketKind) ? -1 : REAL(recv)(file, to, size, flags);
}

// The C library's own names: looking up the next definition may itself ask for memory.
extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* block, size_t size);
#define MEMORY(call) (isOurs(__builtin_return_address(0)) && fails(memoryKind) ? NULL : (call))
void* malloc(size_t size) { return MEMORY(__libc_malloc(size)); }
void* calloc(size_t count, size_t size) { return MEMORY(__libc_calloc(count, size)); }
void* realloc(void* block, size_t size) { return MEMORY(__libc_realloc(block, size)); }
