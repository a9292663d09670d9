// Loading and saving whole files, beside FreeImage called directly with the same pixels in and out. Files
// that take little coding are held against FreeImage on a bitmap in its own layout too, blue first, rows from
// the bottom and no alpha that is not needed: what is over that is the price of the layout. DDS is held
// against a plain file of as many bytes.

#include "benchmarks/pictures/testpicture.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "orncommon/surfaces/half.h"

#include <FreeImage.h>

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

using namespace Orn::Surfaces;
using Orn::Image::Codec::SurfaceCodecManager;
using Shared = QSharedPointer<Surface>;

namespace {

struct Format
{
    const char* name;
    const char* extension;
    PixelFormat pixels;
    FREE_IMAGE_FORMAT plugin;
    int saveFlags; // those that the default options mean
    bool isQuick = false;
};

constexpr Format kFormats[] = {
    {"PNG RGBA8", "png", RGBA8, FIF_PNG, PNG_Z_DEFAULT_COMPRESSION},
    {"PNG L16", "png", L16, FIF_PNG, PNG_Z_DEFAULT_COMPRESSION},
    {"TGA RGBA8, opaque", "tga", RGBA8, FIF_TARGA, 0, true},
    {"TGA L8", "tga", L8, FIF_TARGA, 0, true},
    {"EXR RGBA16F", "exr", RGBA16F, FIF_EXR, EXR_PIZ},
    {"TIFF RGBA8", "tif", RGBA8, FIF_TIFF, TIFF_LZW, true},
    {"TIFF RGBA16", "tif", RGBA16, FIF_TIFF, TIFF_LZW},
    {"JPEG RGBA8", "jpg", RGBA8, FIF_JPEG, 75, true},
};

void need(bool done, const char* what)
{
    if (!done) {
        std::fprintf(stderr, "%s failed\n", what);
        std::exit(1);
    }
}

struct Unload
{
    void operator()(FIBITMAP* made) const { FreeImage_Unload(made); }
};
using Bitmap = std::unique_ptr<FIBITMAP, Unload>;

void swapRedAndBlue(FIBITMAP* bitmap)
{
    for (unsigned y = 0; y < kSide; ++y) {
        auto* const row = reinterpret_cast<std::uint32_t*>(FreeImage_GetScanLine(bitmap, int(y)));
        for (unsigned x = 0; x < kSide; ++x)
            row[x] = (row[x] & 0xFF00FF00u) | (row[x] >> 16 & 0xFFu) | (row[x] & 0xFFu) << 16;
    }
}

Bitmap widenedHalves(const Surface& surface)
{
    Bitmap bitmap(FreeImage_AllocateT(FIT_RGBAF, int(kSide), int(kSide)));
    for (unsigned y = 0; y < kSide; ++y) {
        const auto* in = reinterpret_cast<const ORNHalf16*>(surface.row(kSide - 1 - y));
        auto* out = reinterpret_cast<float*>(FreeImage_GetScanLine(bitmap.get(), int(y)));
        for (unsigned i = 0; i < kSide * 4; ++i)
            out[i] = halfToFloat(in[i]);
    }
    return bitmap;
}

/// What a program that calls FreeImage does with our pixels: the library's own calls, and a loop where it has
/// none.
Bitmap theirBitmap(const Surface& surface, const Format& format)
{
    if (format.pixels == RGBA16F)
        return widenedHalves(surface);
    const FREE_IMAGE_TYPE type = format.pixels == L16      ? FIT_UINT16
                                 : format.pixels == RGBA16 ? FIT_RGBA16
                                                           : FIT_BITMAP;
    auto* const bits = const_cast<std::uint8_t*>(surface.data());
    Bitmap bitmap(FreeImage_ConvertFromRawBitsEx(TRUE, bits, type, int(kSide), int(kSide),
                                                 int(surface.pitch()),
                                                 unsigned(getPixelSize(format.pixels) * 8), 0, 0, 0, TRUE));
    if (format.pixels != RGBA8)
        return bitmap;
    swapRedAndBlue(bitmap.get());
    const bool isOpaque = format.plugin == FIF_TARGA && FreeImage_GetColorType(bitmap.get()) == FIC_RGB;
    if (isOpaque || format.plugin == FIF_JPEG)
        bitmap.reset(FreeImage_ConvertTo24Bits(bitmap.get()));
    return bitmap;
}

Bitmap theirLoad(const Format& format, const QByteArray& path)
{
    Bitmap loaded(FreeImage_Load(format.plugin, path.constData()));
    need(loaded != nullptr, "the rival's loading");
    return loaded;
}

/// Rows from the top, and four channels where there are three, as ours.
Bitmap theirPixels(const Format& format, const QByteArray& path)
{
    Bitmap loaded = theirLoad(format, path);
    if (FreeImage_GetImageType(loaded.get()) == FIT_BITMAP && FreeImage_GetBPP(loaded.get()) == 24)
        loaded.reset(FreeImage_ConvertTo32Bits(loaded.get()));
    FreeImage_FlipVertical(loaded.get());
    return loaded;
}

bool areEqual(const Surface& ours, FIBITMAP* theirs)
{
    if (ours.lineSize() != FreeImage_GetLine(theirs) || ours.height() != FreeImage_GetHeight(theirs))
        return false;
    for (unsigned y = 0; y < ours.height(); ++y)
        if (std::memcmp(ours.row(y), FreeImage_GetScanLine(theirs, int(y)), ours.lineSize()) != 0)
            return false;
    return true;
}

/// A folder with our file, the rival's, which hold the same, and the picture in both layouts.
struct Files
{
    explicit Files(const Format& form)
        : format(form), surface(testPicture(form.pixels)), ours(folder.filePath("ours.") + form.extension),
          theirs(QFile::encodeName(folder.filePath("theirs.") + form.extension))
    {
        save();
        bitmap = theirBitmap(*surface, format);
        saveTheirs(bitmap);
        const Shared loaded = load();
        need(areEqual(*loaded, theirPixels(format, QFile::encodeName(ours)).get()), "reading the same");
        need(areEqual(*loaded, theirPixels(format, theirs).get()), "writing the same");
    }

    void save() const { need(SurfaceCodecManager::instance().saveFile(surface, ours), "saving"); }
    void saveTheirs(const Bitmap& made) const
    {
        need(FreeImage_Save(format.plugin, made.get(), theirs, format.saveFlags), "the rival's saving");
    }
    Shared load() const
    {
        Shared loaded = SurfaceCodecManager::instance().loadFile(ours);
        need(loaded != nullptr, "loading");
        return loaded;
    }

    Format format;
    QTemporaryDir folder;
    Shared surface;
    QString ours;
    QByteArray theirs;
    Bitmap bitmap;
};

Pair saving(const Format& format)
{
    const auto files = std::make_shared<Files>(format);
    return {[=] { files->save(); }, [=] { files->saveTheirs(theirBitmap(*files->surface, files->format)); }};
}

Pair loading(const Format& format)
{
    const auto files = std::make_shared<Files>(format);
    return {[=] { files->load(); }, [=] { theirPixels(files->format, files->theirs); }};
}

/// The rival is spared what its layout costs others.
Pair savingAtHand(const Format& format)
{
    const auto files = std::make_shared<Files>(format);
    return {[=] { files->save(); }, [=] { files->saveTheirs(files->bitmap); }};
}

Pair loadingAtHand(const Format& format)
{
    const auto files = std::make_shared<Files>(format);
    return {[=] { files->load(); }, [=] { theirLoad(files->format, files->theirs); }};
}

qint64 byteCount(const Surface& surface)
{
    return qint64(surface.lineSize() * surface.height());
}

struct PlainFile
{
    QTemporaryDir folder;
    Shared surface = testPicture(RGBA8);
    QString dds = folder.filePath("a.dds");
    QString plain = folder.filePath("plain");

    void write() const
    {
        QFile file(plain);
        const auto* pixels = reinterpret_cast<const char*>(surface->data());
        need(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                 file.write(pixels, byteCount(*surface)) == byteCount(*surface),
             "the plain write");
    }

    void read() const
    {
        QFile file(plain);
        Surface target(surface->description());
        need(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) &&
                 file.read(reinterpret_cast<char*>(target.data()), byteCount(target)) == byteCount(target),
             "the plain read");
    }
};

Pair savingDds()
{
    const auto files = std::make_shared<PlainFile>();
    return {[=] { need(SurfaceCodecManager::instance().saveFile(files->surface, files->dds), "saving DDS"); },
            [=] {
                QFile::remove(files->plain); // as a save ends with a new file
                files->write();
            }};
}

Pair loadingDds()
{
    const auto files = std::make_shared<PlainFile>();
    need(SurfaceCodecManager::instance().saveFile(files->surface, files->dds), "saving DDS");
    files->write();
    return {[=] { need(SurfaceCodecManager::instance().loadFile(files->dds) != nullptr, "loading DDS"); },
            [=] { files->read(); }};
}

const bool registered = [] {
    for (const Format& format : kFormats) {
        const std::string name = format.name;
        registerPair("save " + name, "FreeImage, of the same pixels", 1.05,
                     [format] { return saving(format); });
        registerPair("load " + name, "FreeImage, to the same pixels", 1.05,
                     [format] { return loading(format); });
        if (!format.isQuick)
            continue;
        registerPair("save " + name + ", its own layout", "FreeImage, of its bitmap", std::nullopt,
                     [format] { return savingAtHand(format); });
        registerPair("load " + name + ", its own layout", "FreeImage, to its bitmap", std::nullopt,
                     [format] { return loadingAtHand(format); });
    }
    registerPair("save DDS RGBA8", "plain write of as many bytes", 1.05, savingDds);
    registerPair("load DDS RGBA8", "plain read of as many bytes", 1.05, loadingDds);
    return true;
}();

} // namespace
