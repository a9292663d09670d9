// Loading and saving whole files, beside FreeImage on a bitmap that lies in its own layout, and DDS beside a
// plain file of as many bytes.

#include "benchmarks/pictures/testpicture.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <FreeImage.h>

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <memory>

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
};

constexpr Format kFormats[] = {
    {"PNG RGBA8", "png", RGBA8, FIF_PNG, PNG_Z_DEFAULT_COMPRESSION},
    {"PNG L16", "png", L16, FIF_PNG, PNG_Z_DEFAULT_COMPRESSION},
    {"TGA RGBA8, opaque", "tga", RGBA8, FIF_TARGA, 0},
    {"TGA L8", "tga", L8, FIF_TARGA, 0},
    {"EXR RGBA16F", "exr", RGBA16F, FIF_EXR, EXR_PIZ},
    {"TIFF RGBA8", "tif", RGBA8, FIF_TIFF, TIFF_LZW},
    {"TIFF RGBA16", "tif", RGBA16, FIF_TIFF, TIFF_LZW},
    {"JPEG RGBA8", "jpg", RGBA8, FIF_JPEG, 75},
};

void need(bool done, const char* what)
{
    if (!done) {
        std::fprintf(stderr, "%s failed\n", what);
        std::exit(1);
    }
}

/// A folder with our file, the rival's, and the picture in both layouts.
struct Files
{
    explicit Files(const Format& format)
        : surface(testPicture(format.pixels)), ours(folder.filePath("ours.") + format.extension),
          theirs(QFile::encodeName(folder.filePath("theirs.") + format.extension))
    {
        need(SurfaceCodecManager::instance().saveFile(surface, ours), "the first save");
        bitmap.reset(FreeImage_Load(format.plugin, QFile::encodeName(ours).constData()));
        need(bitmap != nullptr, "loading into the rival's layout");
    }

    struct Unload
    {
        void operator()(FIBITMAP* made) const { FreeImage_Unload(made); }
    };
    QTemporaryDir folder;
    Shared surface;
    QString ours;
    QByteArray theirs;
    std::unique_ptr<FIBITMAP, Unload> bitmap;
};

Pair saving(const Format& format)
{
    const auto files = std::make_shared<Files>(format);
    return {[=] { need(SurfaceCodecManager::instance().saveFile(files->surface, files->ours), "saving"); },
            [=] {
                need(FreeImage_Save(format.plugin, files->bitmap.get(), files->theirs, format.saveFlags),
                     "the rival's saving");
            }};
}

Pair loading(const Format& format)
{
    const auto files = std::make_shared<Files>(format);
    return {[=] { need(SurfaceCodecManager::instance().loadFile(files->ours) != nullptr, "loading"); },
            [=] {
                FIBITMAP* const loaded =
                    FreeImage_Load(format.plugin, QFile::encodeName(files->ours).constData());
                need(loaded != nullptr, "the rival's loading");
                FreeImage_Unload(loaded);
            }};
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
        registerPair(std::string("save ") + format.name, "FreeImage on its own layout", 1.05,
                     [format] { return saving(format); });
        registerPair(std::string("load ") + format.name, "FreeImage into its own layout", 1.05,
                     [format] { return loading(format); });
    }
    registerPair("save DDS RGBA8", "plain write of as many bytes", 1.05, savingDds);
    registerPair("load DDS RGBA8", "plain read of as many bytes", 1.05, loadingDds);
    return true;
}();

} // namespace
