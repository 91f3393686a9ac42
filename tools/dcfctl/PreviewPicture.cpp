// Decoding with gdk-pixbuf and drawing with chafa; see Preview.h. Runs in the child process alone. In a build without
// these libraries there is nothing to draw.
#include "Preview.h"

#ifdef DCFCTL_HAVE_PREVIEW
#include <chafa.h>
#include <fcntl.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>

#include "DcfNames.h"
#include "PictureDecoder.h"

namespace dcfctl {
namespace {

constexpr std::size_t kMostBytes = std::size_t{48} << 20U;
constexpr long long kMostPixels = 150'000'000;
/// Enough for the finest symbols: eight by eight points each.
constexpr int kPointsPerCell = 8;

template <typename Object>
struct Unref {
    void operator()(Object* object) const {
        g_object_unref(object);
    }
};
using Loader = std::unique_ptr<GdkPixbufLoader, Unref<GdkPixbufLoader>>;
using Pixels = std::unique_ptr<GdkPixbuf, Unref<GdkPixbuf>>;

struct UnrefCanvas {
    void operator()(ChafaCanvas* canvas) const {
        chafa_canvas_unref(canvas);
    }
    void operator()(ChafaCanvasConfig* config) const {
        chafa_canvas_config_unref(config);
    }
    void operator()(ChafaSymbolMap* map) const {
        chafa_symbol_map_unref(map);
    }
};

/// A regular file of moderate size, whole; empty for anything else.
std::string ReadPicture(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return {};
    }
    struct stat info = {};
    std::string bytes;
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0 &&
        static_cast<unsigned long long>(info.st_size) <= kMostBytes) {
        std::array<char, 65536> buffer{};
        ssize_t length = 0;
        while (bytes.size() <= kMostBytes && (length = read(fd, buffer.data(), buffer.size())) > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(length));
        }
    }
    close(fd);
    return bytes;
}

struct Room {
    int width;
    int height;
};

/// The decoder is asked for no more points than the cells can show. A size of 0 makes it give up.
void ChooseSize(GdkPixbufLoader* loader, int width, int height, gpointer data) {
    const auto* room = static_cast<const Room*>(data);
    if (width <= 0 || height <= 0 || static_cast<long long>(width) * height > kMostPixels) {
        gdk_pixbuf_loader_set_size(loader, 0, 0);
        return;
    }
    const double scale =
        std::min({1.0, static_cast<double>(room->width) / width, static_cast<double>(room->height) / height});
    gdk_pixbuf_loader_set_size(loader, std::max(1, static_cast<int>(width * scale)),
                               std::max(1, static_cast<int>(height * scale)));
}

/// JPEG alone, which is also what an MPO file begins with: no other decoder sees the bytes.
Pixels Decode(const std::string& bytes, Room room) {
    const Loader loader(gdk_pixbuf_loader_new_with_type("jpeg", nullptr));
    if (loader == nullptr || bytes.empty()) {
        return nullptr;
    }
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(ChooseSize), &room);
    const auto* data = reinterpret_cast<const guchar*>(bytes.data()); // NOLINT: what the loader takes
    // A picture that is cut short is shown as far as it goes.
    (void)gdk_pixbuf_loader_write(loader.get(), data, bytes.size(), nullptr);
    (void)gdk_pixbuf_loader_close(loader.get(), nullptr);
    GdkPixbuf* pixels = gdk_pixbuf_loader_get_pixbuf(loader.get());
    return Pixels(pixels == nullptr ? nullptr : gdk_pixbuf_apply_embedded_orientation(pixels));
}

std::unique_ptr<ChafaCanvas, UnrefCanvas> MakeCanvas(const PreviewWish& wish, GdkPixbuf* pixels, int& columns,
                                                     int& rows) {
    constexpr float kFontRatio = 0.5F; // a character is half as wide as it is high
    columns = wish.columns;
    rows = wish.rows;
    chafa_calc_canvas_geometry(gdk_pixbuf_get_width(pixels), gdk_pixbuf_get_height(pixels), &columns, &rows, kFontRatio,
                               TRUE, FALSE);
    if (columns <= 0 || rows <= 0) {
        return nullptr;
    }
    const std::unique_ptr<ChafaSymbolMap, UnrefCanvas> symbols(chafa_symbol_map_new());
    const std::unique_ptr<ChafaCanvasConfig, UnrefCanvas> config(chafa_canvas_config_new());
    const int tags = wish.utf8 ? CHAFA_SYMBOL_TAG_SPACE | CHAFA_SYMBOL_TAG_SOLID | CHAFA_SYMBOL_TAG_HALF |
                                     CHAFA_SYMBOL_TAG_QUAD | CHAFA_SYMBOL_TAG_STIPPLE
                               : static_cast<int>(CHAFA_SYMBOL_TAG_ASCII);
    chafa_symbol_map_add_by_tags(symbols.get(), static_cast<ChafaSymbolTags>(tags));
    chafa_canvas_config_set_symbol_map(config.get(), symbols.get());
    chafa_canvas_config_set_geometry(config.get(), columns, rows);
    chafa_canvas_config_set_canvas_mode(config.get(),
                                        wish.colours ? CHAFA_CANVAS_MODE_INDEXED_240 : CHAFA_CANVAS_MODE_FGBG);
    return std::unique_ptr<ChafaCanvas, UnrefCanvas>(chafa_canvas_new(config.get()));
}

PreviewCell CellAt(ChafaCanvas* canvas, int column, int row, bool colours) {
    PreviewCell cell = {chafa_canvas_get_char_at(canvas, column, row), -1, -1};
    if (colours) {
        int foreground = -1;
        int background = -1;
        chafa_canvas_get_raw_colors_at(canvas, column, row, &foreground, &background);
        cell.foreground = static_cast<std::int16_t>(foreground);
        cell.background = static_cast<std::int16_t>(background);
    }
    return cell;
}

/// The thumbnail in the metadata, which is quickest; else the picture itself, or the one that a raw file brings.
Pixels DecodeFile(const PreviewWish& wish) {
    const Room room = {wish.columns * kPointsPerCell, wish.rows * kPointsPerCell * 2};
    const eFileType type = TypeOfPath(wish.path);
    const bool jpeg = type == FILE_TYPE_JPG || type == FILE_TYPE_MPO;
    if (!jpeg && type != FILE_TYPE_SRW) {
        return nullptr;
    }
    if (Pixels pixels = Decode(DecodeHead(wish.path).thumbnail, room)) {
        return pixels;
    }
    return Decode(jpeg ? ReadPicture(wish.path) : DecodeScaled(wish.path, std::max(room.width, room.height)), room);
}

} // namespace

bool IsPreviewBuilt() {
    return true;
}

bool DrawPreview(const PreviewWish& wish, PreviewImage& image) {
    const Pixels pixels = DecodeFile(wish);
    if (pixels == nullptr) {
        return false;
    }
    const auto canvas = MakeCanvas(wish, pixels.get(), image.columns, image.rows);
    if (canvas == nullptr) {
        return false;
    }
    chafa_canvas_draw_all_pixels(
        canvas.get(), gdk_pixbuf_get_has_alpha(pixels.get()) != 0 ? CHAFA_PIXEL_RGBA8_UNASSOCIATED : CHAFA_PIXEL_RGB8,
        gdk_pixbuf_get_pixels(pixels.get()), gdk_pixbuf_get_width(pixels.get()), gdk_pixbuf_get_height(pixels.get()),
        gdk_pixbuf_get_rowstride(pixels.get()));
    for (int row = 0; row < image.rows; ++row) {
        for (int column = 0; column < image.columns; ++column) {
            image.cells.push_back(CellAt(canvas.get(), column, row, wish.colours));
        }
    }
    return true;
}

} // namespace dcfctl
#else
namespace dcfctl {

bool IsPreviewBuilt() {
    return false;
}

bool DrawPreview(const PreviewWish& /*wish*/, PreviewImage& /*image*/) {
    return false;
}

} // namespace dcfctl
#endif
