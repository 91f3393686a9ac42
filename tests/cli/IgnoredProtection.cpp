// Stands in for a file system that takes a change of protection and ignores it, as cards do with some mount options: a
// test puts this library in front of the C library of the tool.
#include <sys/types.h>

extern "C" __attribute__((visibility("default"))) int fchmod(int /*fd*/, mode_t /*mode*/) {
    return 0;
}
