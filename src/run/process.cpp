#include "run/process.h"

#include "core/terminal_line.h"
#include "run/job_settings.h"

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace zurt {

namespace {

// The shape tables of one element visit take a quarter of a megabyte.
constexpr std::size_t kStackSize = std::size_t{16} << 20;

// Opened in the direction that the stream is not used in, so that reads or writes fail; standard error is discarded.
void OpenMissingStream(int descriptor, int flags) {
    if (fcntl(descriptor, F_GETFD) != -1)
        return;
    const int opened = open("/dev/null", flags);
    if (opened >= 0 && opened != descriptor) {
        dup2(opened, descriptor);
        close(opened);
    }
}

struct Job {
    int (*run)(int count, char** values);
    int count;
    char** values;
    int status;
};

volatile std::sig_atomic_t jobIsRunning = 0;

// A library that can't go on (the sparse solver without memory) ends the process where it stands, perhaps with status 0.
void FailWithinJob() {
    if (jobIsRunning == 0)
        return;
    std::fflush(nullptr);
    EraseTerminalLine();
    std::fputs(
        "zurt: error: a library has ended the process; what it says stands above, if it says anything\n",
        stderr);
    _exit(kFailed);
}

void* RunJob(void* pointer) {
    Job& job = *static_cast<Job*>(pointer);
    jobIsRunning = 1;
    job.status = job.run(job.count, job.values);
    jobIsRunning = 0;
    return nullptr;
}

} // namespace

void PrepareProcess() {
    OpenMissingStream(STDIN_FILENO, O_WRONLY);
    OpenMissingStream(STDOUT_FILENO, O_RDONLY);
    OpenMissingStream(STDERR_FILENO, O_WRONLY);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

int RunOnOwnStack(int (*job)(int count, char** values), int count, char** values) {
    std::atexit(FailWithinJob);
    Job work{job, count, values, 0};
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStackSize);
    if (pthread_create(&thread, &attributes, RunJob, &work) != 0)
        return job(count, values);
    pthread_attr_destroy(&attributes);
    pthread_join(thread, nullptr);
    return work.status;
}

} // namespace zurt
