// The picture libraries; see the header.
#include "PictureDecoder.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "PictureFile.h"

#ifdef DCFCTL_HAVE_EXIF
#include <libexif/exif-data.h>
#endif
#ifdef DCFCTL_HAVE_THUMBNAILS
#include <gdk-pixbuf/gdk-pixbuf.h>
#endif

namespace dcfctl {

#ifdef DCFCTL_HAVE_EXIF

namespace {

struct ExifRelease {
    void operator()(ExifData* data) const {
        exif_data_unref(data);
    }
};
using Exif = std::unique_ptr<ExifData, ExifRelease>;

Exif ReadExif(const PictureFile& file) {
    const std::string block = ExifBlock(file);
    if (block.empty()) {
        return nullptr;
    }
    return Exif(exif_data_new_from_data(reinterpret_cast<const unsigned char*>(block.data()), // the library's own type
                                        static_cast<unsigned>(block.size())));
}

/// Upright when nothing else is told.
int OrientationOf(ExifData* exif) {
    const ExifEntry* entry = exif_content_get_entry(exif->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
    if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT || entry->size < 2) {
        return 1;
    }
    return exif_get_short(entry->data, exif_data_get_byte_order(exif));
}

/// As it stands in the file, up to its first NUL.
std::string TextOf(ExifData* exif, ExifIfd directory, ExifTag tag) {
    constexpr std::size_t kLongest = 64;
    const ExifEntry* entry = exif_content_get_entry(exif->ifd[directory], tag);
    if (entry == nullptr || entry->format != EXIF_FORMAT_ASCII || entry->data == nullptr) {
        return {};
    }
    const std::string text(entry->data, entry->data + std::min<std::size_t>(entry->size, kLongest));
    return text.substr(0, text.find('\0'));
}

std::string DateOf(ExifData* exif) {
    std::string date = TextOf(exif, EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL);
    return date.empty() ? TextOf(exif, EXIF_IFD_0, EXIF_TAG_DATE_TIME) : date;
}

} // namespace

PictureHead DecodeHead(const std::string& path) {
    PictureHead head;
    const PictureFile file(path);
    const Exif exif = file.IsOpen() ? ReadExif(file) : nullptr;
    int orientation = 1;
    if (exif != nullptr) {
        orientation = OrientationOf(exif.get());
        head.date = DateOf(exif.get());
        if (exif->data != nullptr) {
            head.thumbnail = CleanThumbnail(std::string(exif->data, exif->data + exif->size), orientation);
        }
    }
    // The thumbnail of a raw file may lie anywhere in it.
    if (head.thumbnail.empty() && file.IsOpen()) {
        const std::vector<Span> previews = TiffPreviews(file);
        if (!previews.empty() && previews[0].length <= kMaxThumbnailBytes) {
            head.thumbnail = CleanThumbnail(file.Read(previews[0].offset, static_cast<std::size_t>(previews[0].length)),
                                            orientation);
        }
    }
    return head;
}

#else

PictureHead DecodeHead(const std::string& /*path*/) {
    return {};
}

#endif

#ifdef DCFCTL_HAVE_THUMBNAILS

namespace {

/// More than any camera for these cards writes.
constexpr std::int64_t kMaxPixels = 120'000'000;
constexpr std::uint64_t kMaxBytes = 128U << 20U;
constexpr std::size_t kPiece = 1U << 16U;

struct ObjectRelease {
    void operator()(gpointer object) const {
        g_object_unref(object);
    }
};
using Loader = std::unique_ptr<GdkPixbufLoader, ObjectRelease>;
using Pixels = std::unique_ptr<GdkPixbuf, ObjectRelease>;

struct Wanted {
    int side;
    bool tooLarge = false;
};

/// Asks for the size that is needed as soon as the size of the picture is known: most of a large one is then never
/// held.
extern "C" void LimitSize(GdkPixbufLoader* loader, gint width, gint height, gpointer data) {
    auto* wanted = static_cast<Wanted*>(data);
    const int longest = std::max(width, height);
    if (width < 1 || height < 1 || std::int64_t{width} * height > kMaxPixels) {
        wanted->tooLarge = true;
        gdk_pixbuf_loader_set_size(loader, 0, 0); // ends the loading
    } else if (longest > wanted->side) {
        const auto scaled = [&](int length) {
            return std::max(1, static_cast<int>(std::int64_t{length} * wanted->side / longest));
        };
        gdk_pixbuf_loader_set_size(loader, scaled(width), scaled(height));
    }
}

bool Feed(GdkPixbufLoader* loader, const PictureFile& file, Span span, const Wanted& wanted) {
    const std::uint64_t end = std::min(file.Size(), span.offset + span.length);
    for (std::uint64_t at = span.offset; at < end;) {
        const std::string piece = file.Read(at, static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, end - at)));
        at += piece.size();
        const auto* bytes = reinterpret_cast<const guchar*>(piece.data()); // the library's own type
        if (piece.empty() || gdk_pixbuf_loader_write(loader, bytes, piece.size(), nullptr) == FALSE ||
            wanted.tooLarge) {
            return false;
        }
    }
    return true;
}

/// @param type the one loader that may read it: which others there are depends on the host.
Pixels Load(const PictureFile& file, Span span, const char* type, int side) {
    const Loader loader(gdk_pixbuf_loader_new_with_type(type, nullptr));
    if (loader == nullptr || span.length > kMaxBytes) {
        return nullptr;
    }
    Wanted wanted = {side};
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(LimitSize), &wanted);
    const bool fed = Feed(loader.get(), file, span, wanted);
    const bool closed = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE;
    GdkPixbuf* pixels = fed && closed ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
    return Pixels(pixels == nullptr ? nullptr : gdk_pixbuf_apply_embedded_orientation(pixels));
}

std::string Encoded(GdkPixbuf* pixels) {
    gchar* bytes = nullptr;
    gsize size = 0;
    if (gdk_pixbuf_save_to_buffer(pixels, &bytes, &size, "jpeg", nullptr, "quality", "70", nullptr) == FALSE) {
        return {};
    }
    std::string jpeg(bytes, size);
    g_free(bytes);
    return jpeg;
}

Pixels LoadAny(const PictureFile& file, int side) {
    const Span whole = {0, file.Size()};
    switch (ContainerOf(file)) {
    case Container::kJpeg:
        return Load(file, whole, "jpeg", side);
    case Container::kTiff:
        // The picture of a raw file is not one that a TIFF reader can develop; the preview beside it is.
        for (const Span& preview : TiffPreviews(file)) {
            if (Pixels pixels = Load(file, preview, "jpeg", side)) {
                return pixels;
            }
        }
        return Load(file, whole, "tiff", side);
    default:
        return nullptr;
    }
}

} // namespace

std::string DecodeScaled(const std::string& path, int side) {
    const PictureFile file(path);
    const Pixels pixels = file.IsOpen() && side > 0 ? LoadAny(file, side) : nullptr;
    return pixels == nullptr ? std::string() : Encoded(pixels.get());
}

#else

std::string DecodeScaled(const std::string& /*path*/, int /*side*/) {
    return {};
}

#endif

} // namespace dcfctl
