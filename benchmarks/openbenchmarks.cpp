// Opening a package: the whole, until its picture is painted, and what its parts take by themselves.

#include "applications/player/description/packagemodel.h"
#include "applications/player/session/engine.h"
#include "applications/player/session/enginerecords.h"
#include "applications/player/tweaks/tweakslist.h"
#include "benchmarks/comparison.h"
#include "benchmarks/openwindow.h"
#include "benchmarks/packages.h"

#include <QBuffer>
#include <QDomDocument>

namespace {

using namespace Zph::Applications::Player;

constexpr int kTurns = 15;

void openPackage(benchmark::State& state)
{
    const QString archive = Packages::path("bricks");
    OpenWindow window(archive);
    const EngineAlone::Uids shown = window.shownOutputs();
    TweaksList list;
    std::unique_ptr<EngineAlone> alone;
    Comparison comparison(state, "engine handle and first generation alone");
    for (auto turn : state) {
        const Span whole = window.open();

        std::unique_ptr<Packages::Linked> linked;
        comparison.addPart("linking",
                           Comparison::time([&] { linked = std::make_unique<Packages::Linked>(archive); }));
        QDomDocument description;
        comparison.addPart("description",
                           Comparison::time([&] { linked->linker().takeDescription(description); }));

        const Span handle = Comparison::time([&] {
            alone.reset(); // a document that is opened takes the place of another
            alone = std::make_unique<EngineAlone>(linked->binary());
        });
        const Span generation = Comparison::time([&] { alone->generate(shown); });
        comparison.addPart("engine handle", handle);
        comparison.addPart("first generation", generation);

        QByteArray bytes = linked->binary();
        QBuffer binary(&bytes);
        binary.open(QIODevice::ReadOnly);
        const Engine engine(nullptr, binary);
        const EngineRecords records = readEngineRecords(engine.handleOrNull());
        comparison.addPart("tweak list", Comparison::time([&] {
                               list.build(PackageModel(records.inputs, records.outputs, description));
                           }));
        comparison.add(whole, handle + generation);
    }
}

BENCHMARK(openPackage)->Name("opening a package")->Iterations(kTurns)->UseManualTime();

} // namespace
