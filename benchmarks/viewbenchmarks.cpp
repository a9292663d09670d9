// Showing a large picture again at some zooms, beside a copy of its bytes.

#include "applications/player/views/picturelabel.h"
#include "applications/player/views/viewoutput2d.h"
#include "applications/player/views/zoom.h"
#include "benchmarks/comparison.h"
#include "benchmarks/paintwatch.h"

#include <QApplication>
#include <QComboBox>

#include <cstring>

namespace {

using namespace Zph::Applications::Player;
using Orn::Surfaces::PixelFormat;
using Orn::Surfaces::Surface;

constexpr int kTurns = 31;
constexpr unsigned kSide = 4096;
constexpr int k12Percent = -3, k100Percent = 0; // exponents of the items

class NoHost : public ViewHost
{
public:
    void registerViewer(ViewOutput*) override {}
    void unregisterViewer(ViewOutput*) override {}
    int viewerCount() const override { return 1; }
};

QSharedPointer<Surface> largePicture(PixelFormat format)
{
    auto surface = QSharedPointer<Surface>::create(Orn::Surfaces::SurfaceDescription(kSide, kSide, format),
                                                   Orn::Surfaces::surfaceAlignment);
    const std::size_t bytes = surface->lineSize() * kSide;
    for (std::size_t i = 0; i < bytes; ++i)
        surface->data()[i] = quint8(i * 2654435761u >> 11);
    return surface;
}

void choose(ViewOutput2D& view, int zoomItem)
{
    for (auto* combo : view.findChildren<QComboBox*>())
        if (combo->isEditable())
            view.zoomChanged(combo->findData(zoomItem));
}

void redisplay(benchmark::State& state, PixelFormat format, int zoomItem)
{
    NoHost host;
    ViewOutput2D view(host);
    view.resize(1100, 850);
    view.show();
    const auto surface = largePicture(format);
    const ValueOrSurfacePlayer picture(surface);
    view.setDisplay(picture, 0);
    choose(view, zoomItem); // Fit needs a picture
    if (zoomItem != k100Percent && view.findChild<PictureLabel*>()->width() > view.width())
        qFatal("The picture is not shown at the zoom that is measured");
    PaintWatch watch({view.findChild<PictureLabel*>()});
    const std::size_t bytes = surface->lineSize() * kSide;
    std::vector<quint8> copy(bytes);
    Comparison comparison(state, "memcpy of the picture");
    for (auto turn : state) {
        watch.restart();
        const Span shown = Comparison::time([&] {
            view.setDisplay(picture, 0);
            watch.wait();
        });
        const Span copied = Comparison::time([&] {
            std::memcpy(copy.data(), surface->data(), bytes);
            benchmark::ClobberMemory();
        });
        comparison.add(shown, copied);
    }
}

void registerAll()
{
    const struct
    {
        const char* name;
        PixelFormat format;
    } formats[] = {{"RGBA8", Orn::Surfaces::RGBA8},
                   {"L8", Orn::Surfaces::L8},
                   {"RGBA16", Orn::Surfaces::RGBA16},
                   {"L16", Orn::Surfaces::L16},
                   {"RGBA32F", Orn::Surfaces::RGBA32F}};
    const std::pair<const char*, int> zooms[] = {
        {"12 %", k12Percent}, {"Fit", Zoom::kFit}, {"100 %", k100Percent}};
    for (const auto& [name, format] : formats)
        for (const auto& [zoom, item] : zooms) {
            const std::string title = std::string("redisplay 4096 x 4096 ") + name + " at " + zoom;
            benchmark::RegisterBenchmark(title.c_str(), redisplay, format, item)
                ->Iterations(kTurns)
                ->UseManualTime();
        }
}

const bool registered = (registerAll(), true);

} // namespace
