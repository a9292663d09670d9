// The list of tweaks of a large package: building it over one that is there already, and applying presets to
// it.

#include "applications/player/description/packagemodel.h"
#include "applications/player/tweaks/presets/presets.h"
#include "applications/player/tweaks/tweakbase.h"
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

// All inputs of a package at other values, as slider drags leave them.
PresetDescription largePreset(const TweaksList& list, double share)
{
    PresetDescription preset;
    preset.label = QString::number(share);
    for (const auto& [uid, tweak] : list.tweaks()) {
        PresetInput input{tweak->identifier(), uid, tweak->type(), {}, {}};
        for (int i = 0; i < componentCount(input.type); ++i)
            isFloatType(input.type) ? input.value.setFloat(i, float(share))
                                    : input.value.setInt(i, share > 0.5);
        preset.inputs.append(input);
    }
    return preset;
}

void applyPreset(benchmark::State& state)
{
    const PackageModel package = largePackage(int(state.range(0)));
    TweaksList list;
    list.resize(440, 900);
    list.show();
    list.build(package);
    const PresetDescription presets[] = {largePreset(list, 0.25), largePreset(list, 0.75)};
    int told = 0;
    QObject::connect(&list, &TweaksList::tweakChangedSignal, [&told] { ++told; });
    PaintWatch watch({&list});
    Comparison comparison(state, "the rows' values set one by one");
    int turn = 0;
    const auto painted = [&](const auto& change) {
        watch.restart();
        return Comparison::time([&] {
            change(presets[++turn % 2]);
            list.update();
            watch.wait();
        });
    };
    for (auto each : state) {
        const int before = told;
        const Span whole =
            painted([&](const PresetDescription& preset) { list.presets().apply("pkg://large", preset); });
        if (told != before + 1)
            qFatal("A preset is one change");
        const Span alone = painted([&](const PresetDescription& preset) {
            list.batchTweakUpdate(true);
            for (const PresetInput& input : preset.inputs)
                list.tweaks().at(input.uid)->applyValue(input.value);
            list.batchTweakUpdate(false);
        });
        comparison.add(whole, alone);
    }
}

BENCHMARK(applyPreset)
    ->Name("applying a preset of all inputs")
    ->Arg(300)
    ->Iterations(kTurns)
    ->UseManualTime();
BENCHMARK(rebuildTweaks)->Name("rebuilding a tweak list")->Arg(300)->Iterations(kTurns)->UseManualTime();

} // namespace
