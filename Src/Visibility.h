// Which members of the exported classes are not exported.
#ifndef VISIBILITY_H
#define VISIBILITY_H

/// Marks a private helper of an exported class.
#define KELP_LOCAL __attribute__((visibility("hidden")))

#endif
