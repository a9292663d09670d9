#include "applications/player/tweaks/tweakslist.h"
#include "applications/player/session/static.h"
#include "applications/player/tweaks/rollgraph.h"
#include "applications/player/tweaks/rollgroup.h"
#include "applications/player/tweaks/tests/tweakfixture.h"

#include <QApplication>
#include <QVBoxLayout>
#include <gtest/gtest.h>

using namespace Zph::Applications::Player;

namespace {

using Changes = std::vector<std::vector<int>>;

struct Panel : testing::Test
{
    Panel()
    {
        QObject::connect(&list, &TweaksList::tweakChangedSignal,
                         [this](std::vector<int> indexes) { changes.push_back(indexes); });
    }
    ~Panel() override { Static::instance().timelineBusy = false; }

    TweakBase* tweak(quint32 uid) const { return list.tweaks().at(uid); }
    void change(quint32 uid, int value) const { tweak(uid)->applyValue(InputValue::fromInts(value)); }
    QList<RollBase*> rolls() const { return list.findChildren<RollBase*>(); }
    QToolButton* button(const char* toolTip) const
    {
        for (QToolButton* candidate : list.findChildren<QToolButton*>())
            if (candidate->toolTip().startsWith(toolTip))
                return candidate;
        return nullptr;
    }

    TweaksList list;
    Changes changes;
};

const std::vector<VellorInputDesc> threeInts{{1, 4, nullptr}, {2, 4, nullptr}, {3, 4, nullptr}};

QByteArray graph(const QByteArray& content, const QByteArray& attributes = "pkgurl='g' label='G'")
{
    return "<p><graphs><graph " + attributes + ">" + content + "</graph></graphs></p>";
}

std::vector<quint32> uidsInside(const QLayout* layout)
{
    std::vector<quint32> uids;
    for (int i = 0; i < layout->count(); ++i)
        if (auto* tweak = qobject_cast<TweakBase*>(layout->itemAt(i)->widget()))
            uids.push_back(tweak->uid());
    return uids;
}

TEST_F(Panel, emptyPackages)
{
    EXPECT_FALSE(list.isEnabled());
    list.build(package({}, ""));
    EXPECT_TRUE(list.isEnabled());
    const auto shows = [&](const char* words) {
        for (const QLabel* label : list.findChildren<QLabel*>())
            if (label->text() == words && !label->isHidden())
                return true;
        return false;
    };
    EXPECT_TRUE(shows("No tweaks defined."));
    list.build(package({{1, 7, nullptr}}, ""), true);
    EXPECT_TRUE(shows("No tweaks (remote)."));
    EXPECT_FALSE(shows("No tweaks defined."));
    EXPECT_TRUE(list.tweaks().empty());
}

TEST_F(Panel, sortsByOrderThenSource)
{
    list.build(package({{1, 4, nullptr},
                        {2, 4, nullptr},
                        {3, 4, nullptr},
                        {4, 4, nullptr},
                        {5, 4, nullptr},
                        {6, 4, nullptr}},
                       graph("<inputs><input uid='1'><inputgui order='10'/></input>"
                             "<input uid='2'><inputgui order='3'/></input>"
                             "<input uid='4'><inputgui order='7'/></input>"
                             "<input uid='3'><inputgui order='7'/></input>"
                             "<input uid='5' identifier='$randomseed'><inputgui order='99'/></input>"
                             "<input uid='6'><inputgui order='100000000'/></input></inputs>")));
    ASSERT_EQ(rolls().size(), 1);
    EXPECT_EQ(uidsInside(rolls()[0]->bodyLayout()), (std::vector<quint32>{5, 2, 3, 4, 1, 6}))
        << "of two inputs with one order the engine's first comes first";
}

TEST_F(Panel, graphsAndGroups)
{
    const QByteArray xml = R"(<p><global><inputs><input uid='1'/></inputs></global><graphs>
        <graph pkgurl='a' label='A &amp; B' description='About'>
            <guigroups><guigroup identifier='m' description='M' defaultstate='unfolded'/></guigroups>
            <inputs><input uid='2'/><input uid='3'><inputgui group='/m//n/'/></input>
                    <input uid='4'><inputgui group='m/n'/></input></inputs></graph>
        <graph pkgurl='b'><inputs><input uid='5'/></inputs></graph></graphs></p>)";
    list.build(package({{1, 4, nullptr},
                        {2, 4, nullptr},
                        {3, 4, nullptr},
                        {4, 4, nullptr},
                        {5, 4, nullptr},
                        {6, 4, nullptr}},
                       xml));
    const auto graphs = list.findChildren<RollGraph*>();
    ASSERT_EQ(graphs.size(), 3) << "a, b, and the one of what nothing describes";
    int unfolded = 0;
    for (const RollGraph* roll : graphs)
        unfolded += roll->isUnfolded();
    EXPECT_EQ(unfolded, 1);
    const auto groups = list.findChildren<RollGroup*>();
    ASSERT_EQ(groups.size(), 2);
    RollBase* outer = groups[0];
    RollBase* inner = groups[1];
    EXPECT_TRUE(outer->isUnfolded());
    EXPECT_FALSE(inner->isUnfolded()) << "a group without an element is folded";
    EXPECT_TRUE(outer->bodyFrame()->isAncestorOf(inner));
    EXPECT_EQ(outer->indent(), 20);
    EXPECT_EQ(inner->indent(), 40);
    EXPECT_EQ(outer->headerFrame()->toolTip(), "M");
    EXPECT_EQ(uidsInside(inner->bodyLayout()), (std::vector<quint32>{3, 4}));
    for (QWidget* parent = tweak(1)->parentWidget(); parent; parent = parent->parentWidget())
        EXPECT_EQ(qobject_cast<RollBase*>(parent), nullptr) << "inputs of no graph stand outside the rolls";
    RollBase* a = qobject_cast<RollBase*>(outer->parentWidget()->parentWidget());
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->headerFrame()->toolTip(), "a\n\nAbout");
    a->unfold(false);
    EXPECT_TRUE(a->bodyFrame()->isHidden());
}

TEST_F(Panel, groupsOfNoGraphStandInThePanelItself)
{
    list.build(
        package({{1, 4, nullptr}},
                "<p><global><guigroups><guigroup identifier='s' description='S'/></guigroups>"
                "<inputs><input uid='1'><inputgui group='s'/></input></inputs></global><graphs/></p>"));
    EXPECT_TRUE(list.findChildren<RollGraph*>().isEmpty());
    const auto groups = list.findChildren<RollGroup*>();
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(groups[0]->headerFrame()->toolTip(), "S");
    EXPECT_EQ(groups[0]->indent(), 20);
    EXPECT_EQ(uidsInside(groups[0]->bodyLayout()), std::vector<quint32>{1});
}

TEST_F(Panel, freezeHoldsChangesInTheirOrder)
{
    list.build(package(threeInts, ""));
    change(2, 5);
    EXPECT_EQ(changes, (Changes{{1}}));
    changes.clear();
    button("Freeze")->click();
    change(3, 1);
    change(1, 1);
    change(3, 2);
    EXPECT_TRUE(changes.empty());
    button("Freeze")->click();
    EXPECT_EQ(changes, (Changes{{2, 0, 2}}));
    button("Freeze")->click();
    button("Freeze")->click();
    EXPECT_EQ(changes.size(), 1u) << "nothing held back, nothing told";
}

TEST_F(Panel, batchIsOneChangeAndLeavesAFreezeAlone)
{
    list.build(package(threeInts, ""));
    list.batchTweakUpdate(true);
    change(1, 1);
    change(2, 1);
    EXPECT_TRUE(changes.empty());
    list.batchTweakUpdate(false);
    EXPECT_EQ(changes, (Changes{{0, 1}}));
    EXPECT_FALSE(list.isFrozen());

    button("Freeze")->click();
    list.resetToDefault();
    EXPECT_TRUE(list.isFrozen());
    EXPECT_EQ(changes.size(), 1u);
    EXPECT_EQ(tweak(1)->value().intAt(0), 0);
    button("Freeze")->click();
    EXPECT_EQ(changes.back(), (std::vector<int>{0, 1}));
}

TEST_F(Panel, rebuildDropsWhatWasHeldBackButNotTheFreeze)
{
    list.build(package(threeInts, ""));
    button("Freeze")->click();
    change(1, 1);
    list.build(package(threeInts, ""));
    EXPECT_TRUE(list.isFrozen());
    button("Freeze")->click();
    EXPECT_TRUE(changes.empty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(list.findChildren<TweakBase*>().size(), 3);
}

TEST_F(Panel, timeComesAsOneChange)
{
    list.build(package({{1, 0, nullptr}, {2, 4, nullptr}},
                       graph("<inputs><input uid='1' identifier='$time'/><input uid='2'/></inputs>")));
    EXPECT_TRUE(list.anyTimeDependent());
    EXPECT_FALSE(list.anyImage());
    Static::instance().timelineBusy = true;
    change(2, 3);
    EXPECT_TRUE(changes.empty());
    list.setTimeChanged(1.5f);
    EXPECT_EQ(changes, (Changes{{1, 0}})) << "with what the user changed while it played";
    change(2, 4);
    Static::instance().timelineBusy = false;
    emit list.timeChangeEnded();
    EXPECT_EQ(changes.back(), (std::vector<int>{1}));
}

TEST_F(Panel, engineHearsOfDirtyInputsInUidOrder)
{
    list.build(package({{9, 4, nullptr}, {3, 8, nullptr}, {5, 4, nullptr}},
                       graph("<inputs><input uid='3' identifier='$outputsize'/></inputs>")));
    change(9, 1);
    RecordingEngine engine;
    list.applyAll(engine);
    ASSERT_EQ(engine.calls.size(), 2u);
    EXPECT_EQ(engine.calls[0].index, 1);
    EXPECT_EQ(engine.calls[0].words.intAt(0), 9) << "512, whatever the engine starts from";
    EXPECT_EQ(engine.calls[0].words.intAt(1), 9);
    EXPECT_EQ(engine.calls[1].index, 0);
    list.applyAll(engine);
    EXPECT_EQ(engine.calls.size(), 2u);
}

TEST_F(Panel, pins)
{
    list.build(package(threeInts, ""));
    const auto pinned = [&] {
        std::list<size_t> indexes;
        emit list.getActiveTweaksBridge(indexes);
        return indexes.size();
    };
    EXPECT_EQ(pinned(), 0u);
    QToolButton* show = button("Show");
    QToolButton* all = button("Make/unmake all");
    if (show->isChecked())
        show->click();
    EXPECT_FALSE(all->isEnabled());
    show->click();
    EXPECT_TRUE(all->isEnabled());
    all->click();
    EXPECT_EQ(pinned(), 3u);
    EXPECT_TRUE(TweaksList().findChildren<QToolButton*>().size() > 0);
    list.build(package(threeInts, ""));
    EXPECT_EQ(pinned(), 0u) << "a new tree starts without pins";
    show->click();
}

TEST_F(Panel, conditionsHideRowsAndRolls)
{
    const QByteArray xml =
        graph("<inputs><input uid='1' identifier='on'><inputgui widget='checkbox'/></input>"
              "<input uid='2' identifier='x'><inputgui group='m/n' visibleif='input.on'/></input>"
              "<input uid='3' identifier='y'><inputgui group='m/n' visibleif='input.on'/></input>"
              "<input uid='4' identifier='z'><inputgui visibleif='input.missing == 1'/></input></inputs>");
    list.build(package({{1, 4, nullptr}, {2, 4, nullptr}, {3, 4, nullptr}, {4, 4, nullptr}}, xml));
    const auto groups = list.findChildren<RollGroup*>();
    ASSERT_EQ(groups.size(), 2);
    const auto hidden = [&] {
        return std::vector<bool>{tweak(2)->isHidden(),  tweak(3)->isHidden(),   groups[0]->isHidden(),
                                 groups[1]->isHidden(), rolls()[0]->isHidden(), tweak(4)->isHidden()};
    };
    EXPECT_EQ(hidden(), (std::vector<bool>{true, true, true, true, false, false}));
    change(1, 1);
    EXPECT_EQ(hidden(), (std::vector<bool>{false, false, false, false, false, false}));
    button("Freeze")->click();
    change(1, 0);
    EXPECT_FALSE(tweak(2)->isHidden()) << "held back with the change";
    button("Freeze")->click();
    EXPECT_TRUE(tweak(2)->isHidden());
}

TEST_F(Panel, rollsWithoutAnythingToShowStayHiddenOnScreen)
{
    list.show();
    list.build(package({{1, 4, nullptr}}, graph("<inputs><input uid='1' identifier='x'>"
                                                "<inputgui visibleif='false'/></input></inputs>")));
    QCoreApplication::processEvents();
    EXPECT_TRUE(rolls()[0]->isHidden());
}

TEST_F(Panel, conditionsHideOutputs)
{
    const QByteArray xml = graph("<inputs><input uid='1' identifier='on'/></inputs><outputs>"
                                 "<output uid='7'><outputgui visibleif='input.on == 0'/></output>"
                                 "<output uid='8'><outputgui visibleif='input.on == 1'/></output>"
                                 "<output uid='9'><outputgui visibleif='input.none == 1'/></output>"
                                 "<output uid='10'/></outputs>");
    std::vector<VellorOutputDesc> outputs;
    for (quint32 uid = 7; uid <= 10; ++uid) {
        outputs.push_back({});
        outputs.back().uid = uid;
    }
    int told = 0;
    QObject::connect(&list, &TweaksList::hiddenOutputsChanged, [&] { ++told; });
    list.build(PackageModel({{1, 4, nullptr}}, outputs, parsed(xml)));
    EXPECT_EQ(list.hiddenOutputs(), std::set<quint32>{8});
    told = 0;
    change(1, 1);
    EXPECT_EQ(list.hiddenOutputs(), std::set<quint32>{7});
    change(1, 2);
    EXPECT_EQ(list.hiddenOutputs(), (std::set<quint32>{7, 8}));
    change(1, 3);
    EXPECT_EQ(told, 2);
}

TEST_F(Panel, conditionsSeeTheirOwnGraphOnly)
{
    const QByteArray xml =
        "<p><graphs><graph pkgurl='a'><inputs><input uid='1' identifier='on'/></inputs></graph>"
        "<graph pkgurl='b'><inputs><input uid='2' identifier='x'>"
        "<inputgui visibleif='input.on'/></input></inputs></graph></graphs></p>";
    list.build(package({{1, 4, nullptr}, {2, 4, nullptr}}, xml));
    EXPECT_FALSE(tweak(2)->isHidden()) << "an unknown name shows";
}

TEST_F(Panel, rebuildFromInsideAChangeIsSafe)
{
    list.build(package(threeInts, ""));
    bool rebuilt = false;
    QObject::connect(&list, &TweaksList::tweakChangedSignal, [&] {
        if (!rebuilt)
            list.build(package(threeInts, ""));
        rebuilt = true;
    });
    tweak(1)->findChild<QSlider*>()->setValue(4);
    EXPECT_TRUE(rebuilt);
    EXPECT_EQ(tweak(1)->value().intAt(0), 0);
}

TEST_F(Panel, oneUidOneRowAndDeepPathsEnd)
{
    QByteArray path;
    for (int i = 0; i < 5000; ++i)
        path += "g/";
    list.build(package({{1, 4, nullptr}, {1, 0, nullptr}},
                       graph("<inputs><input uid='1'><inputgui group='" + path + "'/></input></inputs>")));
    EXPECT_EQ(list.findChildren<TweakBase*>().size(), 1);
    EXPECT_EQ(tweak(1)->type(), 4u);
    EXPECT_LE(list.findChildren<RollGroup*>().size(), 16);
}

TEST_F(Panel, trackingIsForReleaseOnly)
{
    list.build(package(threeInts, ""));
    QToolButton* tracking = button("Slider tracking");
    tracking->click();
    EXPECT_TRUE(Static::instance().generateOnRelease);
    EXPECT_FALSE(tweak(1)->findChild<QSlider*>()->hasTracking());
    list.build(package(threeInts, ""));
    EXPECT_FALSE(tweak(1)->findChild<QSlider*>()->hasTracking());
    tracking->click();
    EXPECT_TRUE(tweak(1)->findChild<QSlider*>()->hasTracking());
}

} // namespace
