// Entry of the test program. Code under test that ends the process would look like success; here an end ahead of the last
// test is a failure.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

pid_t testProcess = 0; // children of death tests may end as they like
bool finished = false;

void FailOnEarlyEnd() {
    if (finished || getpid() != testProcess)
        return;
    std::fputs("the code under test ended the process\n", stderr);
    _exit(99);
}

} // namespace

int main(int argc, char** argv) {
    testProcess = getpid();
    std::atexit(FailOnEarlyEnd);
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    finished = true;
    return result;
}
