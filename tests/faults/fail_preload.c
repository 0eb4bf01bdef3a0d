// Preloaded into the program (LD_PRELOAD): makes the N-th call of one kind fail, from the beginning of main on.
// FAULTS_KIND    kind of call, one of the names below
// FAULTS_AT      which of them, from 1
// FAULTS_MODE    once: that call alone; on: that call and all behind it; kill: the process is killed there
// FAULTS_COUNTS  file for the counts of all kinds, written at the end of the process
// FAULTS_SPACE   limit on the address space, in megabytes
// FAULTS_KILL    microseconds from the start on to a SIGKILL
// The standard library writes by system calls of its own, out of reach here: limits on file size serve for those.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#undef fwrite_unlocked // some headers have it as a macro

enum Kind {
    kMemory,
    kSolver,
    kMap,
    kOpen,
    kScratch,
    kWrite,
    kFlush,
    kClose,
    kTruncate,
    kSeek,
    kUnlink,
    kRead,
    kStat,
    kLock,
    kThread,
    kSync,
    kRename,
    kKinds
};
static const char* const names[kKinds] = {"memory", "solver", "map",      "open", "scratch", "write",
                                          "flush",  "close",  "truncate", "seek", "unlink",  "read",
                                          "stat",   "lock",   "thread",   "sync", "rename"};
static const int errors[kKinds] = {ENOMEM, ENOMEM, ENOMEM, EMFILE, ENOSPC, ENOSPC, ENOSPC, EIO, EIO,
                                   EIO,    EPERM,  EIO,    EIO,    ENOLCK, EAGAIN, EIO,    EIO};

static int counting = 0; // set at the beginning of main
static int insideSolver = 0;
static int chosenKind = -1;
static long chosenCall = 0;
static char mode = 'e'; // the last letter of its name
static long calls[kKinds];

extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* block, size_t size);

static int Fails(enum Kind kind) {
    if (!counting)
        return 0;
    const long call = __atomic_add_fetch(&calls[kind], 1, __ATOMIC_RELAXED);
    if ((int)kind != chosenKind || call < chosenCall || (call > chosenCall && mode != 'n'))
        return 0;
    if (mode == 'l')
        kill(getpid(), SIGKILL);
    errno = errors[kind];
    return 1;
}

static void KillAfter(long microseconds) {
    struct sigevent event = {.sigev_notify = SIGEV_SIGNAL, .sigev_signo = SIGKILL};
    struct itimerspec moment = {.it_value = {microseconds / 1000000, microseconds % 1000000 * 1000}};
    timer_t timer;
    if (timer_create(CLOCK_MONOTONIC, &event, &timer) == 0)
        timer_settime(timer, 0, &moment, NULL);
}

__attribute__((constructor)) static void ReadSettings(void) {
    const char *kind = getenv("FAULTS_KIND"), *at = getenv("FAULTS_AT"), *name = getenv("FAULTS_MODE");
    for (int k = 0; kind != NULL && k < kKinds; ++k)
        if (strcmp(kind, names[k]) == 0)
            chosenKind = k;
    chosenCall = at != NULL ? atol(at) : 0;
    mode = name != NULL && *name != '\0' ? name[strlen(name) - 1] : 'e';
    const char* space = getenv("FAULTS_SPACE");
    const rlim_t bytes = space != NULL ? (rlim_t)atol(space) << 20 : RLIM_INFINITY;
    if (space != NULL)
        setrlimit(RLIMIT_AS, &(struct rlimit){bytes, bytes});
    if (getenv("FAULTS_KILL") != NULL)
        KillAfter(atol(getenv("FAULTS_KILL")));
}

__attribute__((destructor)) static void WriteCounts(void) {
    counting = 0;
    const char* name = getenv("FAULTS_COUNTS");
    FILE* file = name != NULL ? fopen(name, "w") : NULL;
    for (int k = 0; file != NULL && k < kKinds; ++k)
        fprintf(file, "%s %ld\n", names[k], calls[k]);
    if (file != NULL)
        fclose(file);
}

// The next definition of a function, looked up once.
#define NEXT(name, result, parameters)                                                                       \
    static result(*next) parameters = NULL;                                                                  \
    if (next == NULL)                                                                                        \
    next = __extension__(result(*) parameters) dlsym(RTLD_NEXT, #name)

#define FAILING(kind, failure, result, name, parameters, arguments)                                          \
    result name parameters {                                                                                 \
        NEXT(name, result, parameters);                                                                      \
        return Fails(kind) ? failure : next arguments;                                                       \
    }

// Done all the same, with a failure for an answer.
#define FAILING_BEHIND(kind, result, name, parameters, arguments)                                            \
    result name parameters {                                                                                 \
        NEXT(name, result, parameters);                                                                      \
        const result done = next arguments;                                                                  \
        return Fails(kind) ? -1 : done;                                                                      \
    }

// Memory that the sparse solver asks for is a kind of its own: much of it goes unchecked in there.
static int FailsToAllocate(void) {
    return Fails(insideSolver ? kSolver : kMemory);
}

void dmumps_c(void* instance) {
    NEXT(dmumps_c, void, (void*));
    insideSolver = 1;
    next(instance);
    insideSolver = 0;
}

void* malloc(size_t size) {
    return FailsToAllocate() ? NULL : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return FailsToAllocate() ? NULL : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    return FailsToAllocate() ? NULL : __libc_realloc(block, size);
}

// main begins with it.
__sighandler_t signal(int number, __sighandler_t handler) {
    NEXT(signal, __sighandler_t, (int, __sighandler_t));
    counting = 1;
    return next(number, handler);
}

int open(const char* name, int flags, ...) {
    NEXT(open, int, (const char*, int, ...));
    va_list more;
    va_start(more, flags);
    const mode_t permissions = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return Fails(kOpen) ? -1 : next(name, flags, permissions);
}

FAILING(kMap, MAP_FAILED, void*, mmap, (void* at, size_t n, int p, int flags, int file, off_t from),
        (at, n, p, flags, file, from))
FAILING(kMap, -1, int, madvise, (void* at, size_t n, int advice), (at, n, advice))
FAILING(kOpen, NULL, FILE*, fopen, (const char* name, const char* how), (name, how))
FAILING(kOpen, NULL, FILE*, fdopen, (int file, const char* how), (file, how))
FAILING(kScratch, -1, int, mkostemp, (char* name, int flags), (name, flags))
FAILING(kScratch, NULL, FILE*, tmpfile, (void), ())
FAILING(kWrite, 0, size_t, fwrite, (const void* items, size_t size, size_t n, FILE* file),
        (items, size, n, file))
FAILING(kWrite, 0, size_t, fwrite_unlocked, (const void* items, size_t size, size_t n, FILE* file),
        (items, size, n, file))
FAILING(kWrite, EOF, int, __overflow, (FILE * file, int c), (file, c)) // of putc_unlocked
FAILING(kFlush, EOF, int, fflush, (FILE * file), (file))
FAILING_BEHIND(kClose, int, fclose, (FILE * file), (file))
FAILING_BEHIND(kClose, int, close, (int file), (file))
FAILING(kTruncate, -1, int, ftruncate, (int file, off_t length), (file, length))
FAILING(kSeek, -1, int, fseek, (FILE * file, long offset, int whence), (file, offset, whence))
FAILING(kSeek, -1, long, ftell, (FILE * file), (file))
FAILING(kSync, -1, int, fsync, (int file), (file))
FAILING(kSync, -1, int, fdatasync, (int file), (file))
FAILING(kRename, -1, int, rename, (const char* from, const char* to), (from, to))
FAILING(kUnlink, -1, int, unlink, (const char* name), (name))
FAILING(kRead, -1, ssize_t, read, (int file, void* target, size_t n), (file, target, n))
FAILING(kRead, EOF, int, getc, (FILE * file), (file))
FAILING(kStat, -1, int, stat, (const char* name, struct stat* status), (name, status))
FAILING(kStat, -1, int, fstat, (int file, struct stat* status), (file, status))
FAILING(kLock, -1, int, flock, (int file, int operation), (file, operation))
FAILING(kThread, EAGAIN, int, pthread_create,
        (pthread_t * thread, const pthread_attr_t* how, void* (*run)(void*), void* argument),
        (thread, how, run, argument))
