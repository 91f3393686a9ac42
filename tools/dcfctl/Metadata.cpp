// With or without the component; see the header.
#include "Metadata.h"

#ifdef DCFCTL_HAVE_EXIF
#include "DcfExif.h"
#endif

namespace dcfctl {

PhotoCollector ExifCollector() {
#ifdef DCFCTL_HAVE_EXIF
    return CollectExif;
#else
    return nullptr;
#endif
}

std::optional<Finding> MetadataRefusal() {
    if (ExifCollector() != nullptr) {
        return std::nullopt;
    }
    return Finding{"metadata-not-built", ExitCode::kRefused,
                   "this dcfctl was built without the EXIF collector; install libexif and build it with -DDCF_EXIF=ON"};
}

} // namespace dcfctl
