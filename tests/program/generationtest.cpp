// From a tweak to the pictures: what is computed again and what is not, by the log of an engine that plays a
// script.

#include "applications/player/session/engine.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakslist.h"
#include "tests/program/programfixture.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QStatusBar>
#include <QToolButton>
#include <QUrl>

namespace Zph::Applications::Player::Tests {

namespace {

using Zph::Engine::Tests::testEngine;
using Zph::Engine::Tests::TestEngineLog;

// Input a alters the first output, b the second, c none and d both pictures and the number.
const QByteArray script = "testengine\n"
                          "input 11 0 3f000000\ninput 12 0 0\ninput 13 0 0\ninput 14 0 0\n"
                          "output 21 5 4 4 0\noutput 22 5 4 4 0\noutput 23 0\n";
const QByteArray description =
    R"(<vlrdescription formatversion="1.0"><graphs><graph pkgurl="pkg://g" label="G">
<inputs>
 <input uid="11" identifier="a" type="0" default="0.5"><inputgui label="A" widget="slider"><guislider min="0" max="1"/></inputgui></input>
 <input uid="12" identifier="b" type="0" default="0"><inputgui label="B" widget="slider"><guislider min="0" max="1"/></inputgui></input>
 <input uid="13" identifier="c" type="0" default="0"><inputgui label="C" widget="slider"><guislider min="0" max="1"/></inputgui></input>
 <input uid="14" identifier="d" type="0" default="0"><inputgui label="D" widget="slider"><guislider min="0" max="1"/></inputgui></input>
</inputs>
<outputs>
 <output uid="21" identifier="one" type="5"><outputgui label="One"/></output>
 <output uid="22" identifier="two" type="5"><outputgui label="Two"/></output>
 <output uid="23" identifier="number" type="0"><outputgui label="Number"/></output>
</outputs></graph></graphs>
<outputs><output index="0" uid="21"/><output index="1" uid="22"/><output index="2" uid="23"/></outputs>
<inputs><input index="0" uid="11" alteroutputs="0"/><input index="1" uid="12" alteroutputs="1"/>
<input index="2" uid="13" alteroutputs=""/><input index="3" uid="14" alteroutputs="0,1,2"/></inputs>
</vlrdescription>)";

class Generation : public ProgramFixture
{
protected:
    Generation() { openWindow(testEngine()); }

    void openScript(const QByteArray& more = {}, bool withDescription = true)
    {
        const QString path = put("script.vlrbin", script + more);
        if (withDescription)
            put("script.xml", description);
        ASSERT_TRUE(window->loadFile(path)) << consoleText().toStdString();
    }

    /// The outputs that the engine was asked for since the last look, one entry a generation.
    QStringList computed()
    {
        QStringList found;
        for (const QString& line : engineLog.take())
            if (line.startsWith("PushOutputs flags=0x2 "))
                found << line.section("outputs=", 1).section(' ', 0, 0);
        return found;
    }

    void change(const QString& caption, float value) const
    {
        tweak(caption)->applyValue(InputValue::fromFloats(value));
    }

    /// A second view beside the first; it shows another output.
    ViewOutput2D& secondView(const QString& output)
    {
        views().first()->splitHorz();
        ViewOutput2D& added = *views().last();
        chooseOutput(added, output);
        return added;
    }
};

TEST_F(Generation, AChangeComputesWhatItAltersAndSomebodyLooksAt)
{
    openScript();
    EXPECT_EQ(computed(), QStringList({"21"})) << "opening";
    ViewOutput2D& second = secondView("Two");
    EXPECT_EQ(computed(), QStringList({"22"})) << "the first output is shown by both at first, and kept";
    struct Row
    {
        const char* tweak;
        QStringList expected;
    };
    const Row rows[] = {{"A", {"21"}}, {"B", {"22"}}, {"C", {}}, {"D", {"21,22"}}};
    for (const Row& row : rows) {
        change(row.tweak, 0.75f);
        EXPECT_EQ(computed(), row.expected) << row.tweak;
        EXPECT_FALSE(status().startsWith("Generating")) << row.tweak << ": it is over";
        change(row.tweak, 0.75f);
        EXPECT_EQ(computed(), QStringList()) << row.tweak << " as it was";
    }
    chooseOutput(second, "One");
    chooseOutput(second, "Two");
    EXPECT_EQ(computed(), QStringList()) << "both are kept";
    chooseOutput(second, "Number");
    EXPECT_EQ(computed(), QStringList({"23"}));
    EXPECT_EQ(shownText(second).toStdString(), "23");
    change("B", 0.25f);
    EXPECT_EQ(computed(), QStringList()) << "nobody looks at the second picture";
    chooseOutput(second, "Two");
    EXPECT_EQ(computed(), QStringList({"22"}));
}

TEST_F(Generation, WithoutADescriptionEveryChangeCountsForEverything)
{
    openScript({}, false);
    secondView(outputs(*views().first()).at(1));
    computed();
    tweaks().tweaks().at(12)->applyValue(InputValue::fromFloats(0.75f));
    EXPECT_EQ(computed(), QStringList({"21,22"}));
}

TEST_F(Generation, AFrozenPanelHoldsChangesAndATimeStepOrResetSendsThemTogether)
{
    openScript();
    secondView("Two");
    computed();
    QToolButton* freeze = nullptr;
    for (QToolButton* button : tweaks().findChildren<QToolButton*>())
        if (button->text() == "Freeze")
            freeze = button;
    ASSERT_NE(freeze, nullptr);
    freeze->click();
    change("A", 0.1f);
    change("B", 0.2f);
    EXPECT_EQ(computed(), QStringList());
    freeze->click();
    EXPECT_EQ(computed(), QStringList({"21,22"}));
    tweaks().resetToDefault();
    EXPECT_EQ(computed(), QStringList({"21,22"}));
}

TEST_F(Generation, AFrozenViewWantsNothingAndCatchesUp)
{
    openScript();
    ViewOutput2D& view = *views().first();
    computed();
    view.toggleFreeze(true);
    change("A", 0.1f);
    EXPECT_EQ(computed(), QStringList());
    view.toggleFreeze(false);
    EXPECT_EQ(computed(), QStringList({"21"}));
}

TEST_F(Generation, PinnedInputsAreHintsThatFollowTheOutputs)
{
    openScript();
    for (const auto& [uid, tweak] : tweaks().tweaks())
        tweak->setPinned(uid == 12 || uid == 14);
    engineLog.take();
    change("A", 0.25f);
    QStringList pushes;
    for (const QString& line : engineLog.take())
        if (line.startsWith("Push") || line.startsWith("Start") || line.startsWith("Flush"))
            pushes << line;
    EXPECT_EQ(pushes.join('\n').toStdString(), "Flush\n"
                                               "PushSetInput flags=0x0 index=0 type=0 value=3e800000 user=0\n"
                                               "PushOutputs flags=0x2 outputs=21 user=1\n"
                                               "PushSetInput flags=0x800 index=1 type=0 value=null user=0\n"
                                               "PushSetInput flags=0x800 index=3 type=0 value=null user=0\n"
                                               "PushOutputs flags=0x802 outputs=21 user=1\n"
                                               "Start flags=0");
}

TEST_F(Generation, WhatGoesWrongIsToldInTheStatusBar)
{
    struct Row
    {
        const char* script;
        const char* status;
        bool isLoaded;
        const char* console;
    };
    const Row rows[] = {
        {"fail fetch 21 8\n", "Error: Output grab failed (8).", true, ""},
        {"fail start 9\n", "Error: Cannot start generation (9).", true, ""},
        {"fail handle 4\n", "Load Failed!", false, "Cannot load Vellor binary file"},
        {"fail desc 4\n", "Load Failed!", false, "Cannot load Vellor binary file"},
    };
    for (const Row& row : rows) {
        QStringList told;
        const auto connection = QObject::connect(window->statusBar(), &QStatusBar::messageChanged,
                                                 [&told](const QString& text) { told << text; });
        put("script.xml", description);
        EXPECT_EQ(window->loadFile(put("script.vlrbin", script + row.script)), row.isLoaded) << row.script;
        EXPECT_TRUE(told.contains(row.status)) << row.script << ": " << told.join('\n').toStdString();
        EXPECT_TRUE(consoleText().contains(row.console)) << row.script;
        EXPECT_EQ(window->engine() != nullptr, row.isLoaded) << row.script;
        QObject::disconnect(connection);
    }
    TestEngineLog::set("FAIL", "context");
    EXPECT_FALSE(window->loadFile(put("script.vlrbin", script)));
    EXPECT_TRUE(consoleText().contains("Cannot load Vellor binary file"));
    qunsetenv("VELLOR_TEST_ENGINE_FAIL");
    EXPECT_FALSE(window->loadFile(put("script.vlrbin", "testengine\ninput 11 0 0\n"))) << "no outputs";
}

TEST_F(Generation, AFetchThatFailsIsTriedAgainByTheNextChange)
{
    openScript("fail fetch 21 8\n");
    secondView("Two");
    computed();
    EXPECT_FALSE(picture(*views().last()).isNull()) << "one failure stops no other output";
    chooseOutput(*views().last(), "One");
    EXPECT_EQ(computed(), QStringList()) << "the placeholder counts as asked for";
    change("A", 0.2f);
    EXPECT_EQ(computed(), QStringList({"21"}));
}

TEST_F(Generation, ClosingInsideAGenerationEndsInGoodOrder)
{
    // Progress is told about once a second and lets the window paint; a remote package arrives meanwhile.
    put("script.xml", description);
    const QByteArray other = script + "progress 0\n";
    bool isDelivered = false;
    QObject::connect(window->statusBar(), &QStatusBar::messageChanged, window.get(),
                     [&](const QString& text) {
                         if (isDelivered || !text.startsWith("Generating ") || !text.endsWith("%..."))
                             return;
                         isDelivered = true;
                         window->remoteVlrbinReceived(other);
                         window->close();
                     });
    ASSERT_TRUE(window->loadFile(put("script.vlrbin", script + "progress 8 300\n")));
    EXPECT_TRUE(isDelivered);
    EXPECT_TRUE(engineLog.take().contains("Stop mode=1"));
    EXPECT_EQ(window->windowTitle().toStdString(), "Vellor Player - script.vlrbin");
    ASSERT_TRUE(waitFor([this] { return window->windowTitle() == "Vellor Player - Remote file"; }));
    EXPECT_NE(window->engine(), nullptr);
}

TEST_F(Generation, AnythingOpenedInsideAGenerationWaitsForItsEnd)
{
    // A drop is no user input to the event loop and comes through. What it brings may be good or not.
    struct Row
    {
        QStringList files;
        const char* title;
        bool isComputedAgain; // what the document of before did not get to
    };
    const Row rows[] = {
        {{putPackage("floor", "vlr"), putPackage("walls", "vlr")}, "Vellor Player - floor.vlr [...]", false},
        {{put("broken.vlr", "no package")}, "Vellor Player - script.vlrbin", true},
    };
    for (const Row& row : rows) {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& file : row.files)
            urls << QUrl::fromLocalFile(file);
        data.setUrls(urls);
        QStringList titles;
        QObject context;
        QObject::connect(
            window->statusBar(), &QStatusBar::messageChanged, &context, [&](const QString& text) {
                if (!titles.isEmpty() || !text.startsWith("Generating ") || !text.endsWith("%..."))
                    return;
                QDragEnterEvent enter(QPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(window.get(), &enter);
                QDropEvent drop(QPointF(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(window.get(), &drop);
                titles << window->windowTitle();
            });
        openScript("progress 4 300\n");
        ASSERT_EQ(titles, QStringList("Vellor Player - script.vlrbin"));
        EXPECT_TRUE(engineLog.take().contains("Stop mode=1"));
        ASSERT_TRUE(waitFor([&] { return status().startsWith("Load "); }));
        EXPECT_TRUE(waitFor([&] { return window->windowTitle() == row.title; }));
        QStringList again;
        if (row.isComputedAgain) {
            EXPECT_TRUE(waitFor([&] { return (again << computed()).contains("21"); }));
        }
        EXPECT_FALSE(picture(*views().first()).isNull()) << row.title;
    }
}

TEST_F(Generation, ViewsAreSplitAndClosed)
{
    openScript();
    ASSERT_EQ(views().size(), 1);
    views().first()->closeView();
    EXPECT_EQ(views().size(), 1) << "the last one stays";
    views().first()->splitVert();
    views().last()->splitHorz();
    views().last()->splitVert();
    ASSERT_EQ(views().size(), 4);
    for (ViewOutput2D* view : views()) {
        EXPECT_TRUE(view->isEnabled());
        EXPECT_FALSE(picture(*view).isNull());
    }
    views().at(1)->toggleFreeze(true);
    views().at(1)->closeView();
    views().first()->closeView();
    QApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(views().size(), 2);
    change("A", 0.3f);
    EXPECT_EQ(computed().last().toStdString(), "21");
}

} // namespace

} // namespace Zph::Applications::Player::Tests
