#include "orncommon/gui/thememanager.h"
#include "orncommon/core/logmanager.h"
#include "orncommon/gui/style.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtMath>

#include <gtest/gtest.h>

using namespace Orn;
using namespace Orn::Gui;

namespace {

struct Messages : Core::Log::AbstractDelegate
{
    void log(Core::Log::MsgSeverity, Core::Log::Channel const&, QString const& text) override
    {
        texts << text;
    }
    QStringList texts;
};

void write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

/// Waits for the watcher's thread, as long as that may take on a busy machine.
bool sheetBecomes(const QString& sheet)
{
    QElapsedTimer timer;
    timer.start();
    while (qApp->styleSheet() != sheet && timer.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    return qApp->styleSheet() == sheet;
}

class ThemeManagerTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        qunsetenv("VELLOR_QSS_PATH");
        qApp->setStyleSheet(QString());
    }

    QString path(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }

    QTemporaryDir folder;
    ThemeManager manager;
};

TEST_F(ThemeManagerTest, FilesOfTheCurrentThemeAreJoinedInOrderAndMissingOnesAreSkippedWithAWarning)
{
    write(path("a.qss"), "QLabel{}");
    write(path("b.qss"), "QDial{}");
    write(path("other.qss"), "QMenu{}");
    manager.addThemeFile("orn", path("b.qss"));
    manager.addThemeFile("orn", path("missing.qss"));
    manager.addThemeFile("orn", path("a.qss"));
    manager.addThemeFile("other", path("other.qss"));
    const auto messages = QSharedPointer<Messages>::create();
    Core::Log::LogManager::instance().addDelegate(messages);
    manager.setCurrentTheme("orn");
    Core::Log::LogManager::instance().removeDelegate(messages);
    EXPECT_EQ(qApp->styleSheet(), "QDial{}QLabel{}");
    EXPECT_EQ(messages->texts, QStringList("Can't open theme file:" + path("missing.qss")));
}

TEST_F(ThemeManagerTest, WithoutADevelopedSheetTheInstalledOneIsUsed)
{
    ASSERT_TRUE(QDir(folder.path()).mkpath("styles"));
    write(path("styles/orn.qss"), "QLabel{}");
    qputenv("VELLOR_QSS_PATH", QFile::encodeName(path("missing.qss")));
    setUpTheme(manager, folder.path());
    EXPECT_EQ(manager.currentTheme(), "orn");
    EXPECT_EQ(qApp->styleSheet(), "QLabel{}");
}

TEST_F(ThemeManagerTest, ADevelopedSheetIsAppliedAgainWhenItChangesAndWhenItIsReplaced)
{
    write(path("dev.qss"), "QLabel{}");
    qputenv("VELLOR_QSS_PATH", QFile::encodeName(path("dev.qss")));
    setUpTheme(manager, folder.path());
    EXPECT_EQ(manager.currentTheme(), "orn-dev");
    EXPECT_EQ(qApp->styleSheet(), "QLabel{}");

    write(path("dev.qss"), "QDial{}");
    EXPECT_TRUE(sheetBecomes("QDial{}"));
    for (const char* sheet : {"QMenu{}", "QSlider{}"}) { // the second time, too
        write(path("next.qss"), sheet);
        ASSERT_EQ(rename(QFile::encodeName(path("next.qss")).constData(),
                         QFile::encodeName(path("dev.qss")).constData()),
                  0);
        EXPECT_TRUE(sheetBecomes(sheet));
    }
}

/// Contrast of two colours by the definition of the Web Content Accessibility Guidelines.
double contrast(const QColor& one, const QColor& other)
{
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double c) {
            return c <= 0.03928 ? c / 12.92 : qPow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const double x = luminance(one) + 0.05;
    const double y = luminance(other) + 0.05;
    return qMax(x, y) / qMin(x, y);
}

TEST(Style, TextIsReadableAndSurfacesAreNeutral)
{
    const StyleOptions options;
    for (const QColor& surface :
         {options.window, options.base, options.alternateBase, options.button, options.toolTip}) {
        EXPECT_GE(contrast(options.text, surface), 4.5) << surface.name().toStdString();
        EXPECT_EQ(surface.red(), surface.green());
        EXPECT_EQ(surface.red(), surface.blue());
    }
    for (const QColor& surface : {options.window, options.base, options.alternateBase})
        EXPECT_GE(contrast(options.disabledText, surface), 3.0) << surface.name().toStdString();
    EXPECT_GE(contrast(options.placeholderText, options.base), 4.5);
    EXPECT_GE(contrast(options.brightText, options.selection), 4.5);
}

} // namespace
