#include "common/gui/engineselectionwidget.h"

#include "common/engine/backend.h"
#include "common/engine/tests/testengines.h"
#include "common/engine/tests/testinstallation.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

using namespace Zph::Gui;
using namespace Zph::Engine::Tests;
namespace Switcher = Zph::Engine::Switcher;

namespace {

const VellorLinkerEngineDesc* enginesList()
{
    static const VellorLinkerEngineDesc served[] = {{19, 0, "", nullptr, 1, 0}, {}};
    return served;
}

class EngineSelection : public testing::Test
{
protected:
    EngineSelection()
    {
        Switcher::setLinkerEnginesList(enginesList);
        QFile::copy(testEngine(), local);
        QFile::copy(testEngine(), foreign);
        VellorVersion version = {};
        Switcher::addToMRU(foreign, version);
    }

    static QString text(const QDialog& dialog, const char* label)
    {
        return dialog.findChild<QLabel*>(label)->text();
    }

    TestInstallation folder;
    QString local = folder.path("plugins/engines/local.so");
    QString foreign = folder.path("foreign.so");
};

/// Closes the message box that comes up next, and keeps its words.
QString nextMessage(const std::function<void()>& action)
{
    QString words;
    QTimer::singleShot(0, [&words] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            words = box->windowTitle() + ": " + box->text();
            box->accept();
        }
    });
    action();
    return words;
}

} // namespace

TEST_F(EngineSelection, MarksTheCurrentEngineAndThoseAddedByHand)
{
    EngineSelectionWidget dialog(Switcher::listEngines(), foreign);
    const auto* table = dialog.findChild<QTableWidget*>();
    ASSERT_EQ(table->rowCount(), 2);
    const QFont first = table->item(0, 1)->font(), second = table->item(1, 1)->font();
    EXPECT_FALSE(first.bold() || first.italic());
    EXPECT_TRUE(second.bold() && second.italic());
    EXPECT_EQ(table->item(1, 2)->text(), "1.2.1-test");
    EXPECT_EQ(dialog.selectedPath(), foreign);
}

TEST_F(EngineSelection, DescribesTheSelectedEngine)
{
    EngineSelectionWidget dialog(Switcher::listEngines(), local);
    EXPECT_EQ(text(dialog, "mDescriptionTitle"), "<h2>Test Engine</h2>");
    EXPECT_EQ(text(dialog, "mDescriptionVersion"), "<p><b>Version: </b>1.2.1-test</p>");
    EXPECT_EQ(text(dialog, "mDescriptionBuild"), "<p><b>Build: </b>0x00C0FFEE</p>");
    EXPECT_EQ(text(dialog, "mDescriptionFile"),
              "<p><b>File: </b><a href=\"file://" + local + "\">local.so</a></p>");
    EXPECT_EQ(text(dialog, "mDescriptionDesc"), "<hr>Software Engine with SSE2 optimizations");
}

TEST_F(EngineSelection, RemovesOnlyWhatWasAddedByHand)
{
    EngineSelectionWidget dialog(Switcher::listEngines(), local);
    const auto* remove = dialog.findChild<QPushButton*>("mRemoveButton");
    EXPECT_FALSE(remove->isEnabled());
    dialog.findChild<QTableWidget*>()->selectRow(1);
    EXPECT_TRUE(remove->isEnabled());
    dialog.removeSelectedEngine();
    EXPECT_EQ(Switcher::listEngines().size(), 1);
    EXPECT_EQ(dialog.findChild<QTableWidget*>()->rowCount(), 1);
}

TEST_F(EngineSelection, AddsAndSelectsAnEngineFromElsewhere)
{
    EngineSelectionWidget dialog({}, QString());
    EXPECT_FALSE(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
    const QString other = folder.path("other.so");
    QFile::copy(testEngine(), other);
    dialog.addNewEngine(other);
    EXPECT_EQ(dialog.selectedPath(), other);
    EXPECT_EQ(Switcher::listEngines().size(), 3);
    dialog.addNewEngine(other);
    EXPECT_EQ(dialog.findChild<QTableWidget*>()->rowCount(), 1);
}

TEST_F(EngineSelection, TellsAFileThatIsNoEngine)
{
    EngineSelectionWidget dialog(Switcher::listEngines(), local);
    const QString path = testEngine("_partial");
    EXPECT_EQ(nextMessage([&] { dialog.addNewEngine(path); }),
              "Invalid Engine Library: File '" + path + "' is an invalid vellor engine library.");
    EXPECT_EQ(dialog.selectedPath(), local);
}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
