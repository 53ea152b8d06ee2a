// flush_fails.cpp: a disk that does not take what was written: each flush fails. Preloaded into a program of
// a test.

#include <cerrno>

extern "C" {

int fsync(int) {
    errno = ENOSPC;
    return -1;
}

int fdatasync(int) {
    errno = ENOSPC;
    return -1;
}
}
