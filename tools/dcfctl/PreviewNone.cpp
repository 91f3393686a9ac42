// In the place of PreviewPicture.cpp in a build without the libraries that decode and draw pictures.
#include "Preview.h"

namespace dcfctl {

bool IsPreviewBuilt() {
    return false;
}

bool DrawPreview(const PreviewWish& /*wish*/, PreviewImage& /*image*/) {
    return false;
}

} // namespace dcfctl
