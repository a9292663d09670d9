#include "orncommon/image/codec/freeimage/freeimageoptions.h"

#include <QCoreApplication>

namespace Orn::Image::Codec {

namespace {

using OptionDesc = SurfaceCodecOptions::OptionDesc;

class Texts
{
    Q_DECLARE_TR_FUNCTIONS(FreeimageSurfaceCodecFactory)
};

QString runLengthTooltip()
{
    return Texts::tr("Compression type:<br><b>Default</b>:<br>Save without any compression<br><b>RLE</b>:<br>"
                     "Compress the bitmap using RLE when saving");
}

OptionDesc runLengthDesc()
{
    return OptionDesc::sCreateFromMultipleChoices(
        Texts::tr("Compression"), "default", {{Texts::tr("Default"), "default"}, {Texts::tr("RLE"), "rle"}},
        runLengthTooltip());
}

OptionDesc qualityDesc(QString const& tooltip)
{
    return OptionDesc::sCreateFromInteger(Texts::tr("Quality"), 75, 0, 100, tooltip);
}

OptionDesc exrCompressionDesc()
{
    return OptionDesc::sCreateFromMultipleChoices(
        Texts::tr("Compression"), "piz",
        {{Texts::tr("None"), "none"},
         {Texts::tr("Zip"), "zip"},
         {Texts::tr("Piz-based wavelet"), "piz"},
         {Texts::tr("Lossy 24-bits float"), "pxr24"},
         {Texts::tr("Lossy 44% float"), "b44"}},
        Texts::tr(
            "Compression type:<br><b>None</b>:<br>Save with no compression<br><b>Zip</b>:<br>Save with zlib "
            "compression, in blocks of 16 scan lines<br><b>Piz-based wavelet</b>:<br>Save with piz-based "
            "wavelet compression <br><b>Lossy 24-bits float</b>:<br>Save with lossy 24-bit float compression "
            "<br><b>Lossy 44% float</b>:<br>Save with lossy 44% float compression - goes to 22% when "
            "combined "
            "with EXR_LC"));
}

OptionDesc pngCompressionDesc()
{
    return OptionDesc::sCreateFromMultipleChoices(
        Texts::tr("Compression"), "default",
        {{Texts::tr("Default"), "default"},
         {Texts::tr("Best Speed"), "best_speed"},
         {Texts::tr("Best Compression"), "best_compression"},
         {Texts::tr("None"), "none"}},
        Texts::tr(
            "Compression type:<br><b>Default</b>:<br>Save using ZLib level 6 compression (default "
            "recommended "
            "value)<br><b>Best Speed</b>:<br>Save using ZLib level 1 compression (default value is 6)<br><b>"
            "Best Compression</b>:<br>Save using ZLib level 9 compression (default value is "
            "6)<br><b>None</b>:"
            "<br>Save without ZLib compression"));
}

OptionDesc tiffCompressionDesc()
{
    return OptionDesc::sCreateFromMultipleChoices(
        Texts::tr("Compression"), "lzw",
        {{Texts::tr("None"), "none"},
         {Texts::tr("Packbits"), "packbits"},
         {Texts::tr("Deflate"), "deflate"},
         {Texts::tr("Kestrane Deflate"), "kestrane-deflate"},
         {Texts::tr("LZW"), "lzw"},
         {Texts::tr("JPEG"), "jpeg"}},
        Texts::tr(
            "Compression type:<br><b>None</b>:<br>Save without any compression<br><b>Packbits</b>:<br>Save "
            "using PACKBITS compression<br><b>Deflate</b>:<br>Save using DEFLATE compression (also known as "
            "ZLIB compression)<br><b>Kestrane Deflate</b>:<br>Save using KESTRANE DEFLATE compression<br><b>"
            "LZW</b>:<br>Save using LZW compression<br><b>JPEG</b>:<br>Save using JPEG compression (8-bit "
            "greyscale and 24-bit only. Default to LZW for other bitdepths)<br>"));
}

SurfaceCodecOptions exrOptions()
{
    SurfaceCodecOptions options;
    options.declare("exr_use_float",
                    OptionDesc::sCreateFromBool(
                        Texts::tr("Use Float"), false,
                        Texts::tr("<p>Save data as float instead of as half (not recommended)</p>")));
    options.declare("exr_compression", exrCompressionDesc());
    options.declare("exr_lc", OptionDesc::sCreateFromBool(
                                  Texts::tr("1 Luminance, 2 Chroma channels"), false,
                                  Texts::tr("<p>Save images with one luminance and two chroma channels "
                                            "rather than as RGB (lossy compression)</p>")));
    return options;
}

SurfaceCodecOptions jpegOptions()
{
    SurfaceCodecOptions options;
    options.declare("jpg_quality", qualityDesc(Texts::tr("<p>JPEG Quality [0; 100]</p>")));
    options.declare("jpg_progressive", OptionDesc::sCreateFromBool(Texts::tr("Progressive"), false,
                                                                   Texts::tr("<p>Saves as a progressive JPEG "
                                                                             "file</p>")));
    options.declare("jpg_optimize", OptionDesc::sCreateFromBool(
                                        Texts::tr("Optimize"), false,
                                        Texts::tr("<p>On saving, compute optimal Huffman coding tables (can "
                                                  "reduce a few percent of file size)</p>")));
    return options;
}

SurfaceCodecOptions pngOptions()
{
    SurfaceCodecOptions options;
    options.declare("png_compression", pngCompressionDesc());
    options.declare("png_interlaced",
                    OptionDesc::sCreateFromBool(Texts::tr("Interlaced"), false,
                                                Texts::tr("<p>Save using Adam7 interlacing</p>")));
    return options;
}

SurfaceCodecOptions webpOptions()
{
    SurfaceCodecOptions options;
    options.declare("webp_quality",
                    qualityDesc(Texts::tr("<p>Save with quality X:1, where X is between 0 (smallest "
                                          "file) and 100 (biggest file).</p>")));
    options.declare("webp_lossless", OptionDesc::sCreateFromBool(Texts::tr("Lossless"), false,
                                                                 Texts::tr("<p>Save in lossless mode</p>")));
    return options;
}

SurfaceCodecOptions singleOption(QString const& key, OptionDesc const& desc)
{
    SurfaceCodecOptions options;
    options.declare(key, desc);
    return options;
}

} // namespace

QVector<FormatOptions> freeimageWriteOptions()
{
    return {
        {"bmp", singleOption("bmp_compression", runLengthDesc())},
        {"exr", exrOptions()},
        {"jpg", jpegOptions()},
        {"png", pngOptions()},
        {"tga", singleOption("tga_compression", runLengthDesc())},
        {"tif", singleOption("tif_compression", tiffCompressionDesc())},
        {"webp", webpOptions()},
    };
}

} // namespace Orn::Image::Codec
