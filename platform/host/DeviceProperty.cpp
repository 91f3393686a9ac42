// device_set_property for a workstation: there is no such device, so every property is accepted and noted in the log.
// Any thread may call it.
#include "device_property.h"

#include "dlog.h"

namespace {

constexpr int kLogApplications = 3;
constexpr int kPriorityInformation = 4;

} // namespace

int device_set_property(int property, int value, int arg1, int arg2) {
    (void)__dlog_print(kLogApplications, kPriorityInformation, "DCF_HOST", "%s(%d, %d, %d, %d)", __func__, property,
                       value, arg1, arg2); // a log that fails is no reason to refuse
    return 0;
}
