// Runs what the other files of this folder register: picture files and pixel formats.

#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
