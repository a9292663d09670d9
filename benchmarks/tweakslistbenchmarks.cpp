// Building the list of tweaks of a large package, over one that is there already.

#include "applications/player/description/packagemodel.h"
#include "applications/player/tweaks/tweakslist.h"
#include "benchmarks/comparison.h"
#include "benchmarks/paintwatch.h"

#include <QApplication>
#include <QDomDocument>

namespace {

using namespace Zph::Applications::Player;

constexpr int kTurns = 15;
constexpr int kGroups = 20;

struct Kind
{
    quint32 type;
    const char* gui; // the attributes of its widget
    const char* content;
};

// A mix as materials have it: mostly sliders.
constexpr Kind kKinds[] = {
    {VELLOR_TYPE_FLOAT, "widget='slider'", "<guislider min='0' max='1' step='0.01' clamp='on'/>"},
    {VELLOR_TYPE_FLOAT, "widget='slider'", "<guislider min='0' max='1' step='0.01' clamp='on'/>"},
    {VELLOR_TYPE_INTEGER, "widget='slider'", "<guislider min='0' max='16' step='1' clamp='on'/>"},
    {VELLOR_TYPE_FLOAT3, "widget='color'", ""},
    {VELLOR_TYPE_INTEGER, "widget='combobox'",
     "<guicombobox><guicomboboxitem value='0' text='First'/>"
     "<guicomboboxitem value='1' text='Second'/></guicombobox>"},
    {VELLOR_TYPE_FLOAT2, "widget='slider'", "<guislider min='0,0' max='1,1' step='0.01' clamp='on'/>"},
    {VELLOR_TYPE_INTEGER, "widget='togglebutton'", "<guibutton label0='Off' label1='On'/>"},
    {VELLOR_TYPE_FLOAT, "widget='angle'", ""},
};

QString inputElement(int uid, const Kind& kind, int count)
{
    return QStringLiteral(
               "<input uid='%1' type='%2' identifier='input%1'>"
               "<inputgui label='Input number %1' group='Group %3' order='%1' %4>%5</inputgui></input>")
        .arg(QString::number(uid), QString::number(kind.type), QString::number((uid - 1) * kGroups / count),
             QLatin1String(kind.gui), QLatin1String(kind.content));
}

PackageModel largePackage(int count)
{
    std::vector<VellorInputDesc> inputs;
    QString elements;
    for (int uid = 1; uid <= count; ++uid) {
        const Kind& kind = kKinds[std::size_t(uid) % std::size(kKinds)];
        inputs.push_back({quint32(uid), kind.type, nullptr});
        elements += inputElement(uid, kind, count);
    }
    QDomDocument description;
    if (!description.setContent(
            QStringLiteral("<package><graphs><graph pkgurl='pkg://large' label='Large'><inputs>%1"
                           "</inputs></graph></graphs></package>")
                .arg(elements)))
        qFatal("The description of the large package is no XML");
    return PackageModel(inputs, {}, description);
}

void rebuildTweaks(benchmark::State& state)
{
    const PackageModel package = largePackage(int(state.range(0)));
    TweaksList list;
    list.resize(440, 900);
    list.show();
    list.build(package);
    if (list.tweaks().size() != std::size_t(state.range(0)))
        qFatal("Some inputs got no row");
    PaintWatch watch({&list});
    Comparison comparison(state, "build() without the painting");
    for (auto turn : state) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        watch.restart();
        Span build;
        const Span whole = Comparison::time([&] {
            build = Comparison::time([&] { list.build(package); });
            list.update();
            watch.wait();
        });
        comparison.add(whole, build);
    }
}

BENCHMARK(rebuildTweaks)->Name("rebuilding a tweak list")->Arg(300)->Iterations(kTurns)->UseManualTime();

} // namespace
