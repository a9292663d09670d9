#include "aboutdialog.h"

#include "common/engine/backend.h"
#include "orncommon/core/applicationversion.h"

#include <vellor/cooker.h>
#include <vellor/linker.h>

#include <QCoreApplication>
#include <QPixmap>

namespace Zph::Applications::Player {

namespace {

using Orn::Core::ApplicationVersion;

template<class Version> QString versionLine(const QString& name, const Version& version)
{
    ApplicationVersion label;
    label.setVersionNumber(int(version.versionMajor), int(version.versionMinor), int(version.versionPatch), 0,
                           QStringLiteral("%1").arg(version.buildHash, 8, 16, QLatin1Char('0')));
    label.setBuildDate({});
    return name + ' ' + label.createVersionLabel();
}

QString engineLine()
{
    VellorVersion version = {};
    Zph::Engine::getCurrentVersion(&version, VELLOR_API_VERSION);
    return versionLine(AboutDialog::tr("Engine Version"), version);
}

QPixmap picture()
{
    QPixmap pixmap(":/zph/applications/player/images/aboutimage.png");
    pixmap.setDevicePixelRatio(4);
    return pixmap;
}

AboutDialog::Texts texts()
{
    const int year = ApplicationVersion::getCurrent().getBuildDate().year();
    AboutDialog::Texts texts;
    texts.title = QCoreApplication::applicationName();
    texts.details = AboutDialog::versionText();
    texts.disclaimer = AboutDialog::tr("<strong>© %1 Ornex</strong>").arg(year);
    return texts;
}

} // namespace

QString AboutDialog::versionText()
{
    VellorCookerVersion cooker = {};
    vellorCookerGetCurrentVersion(&cooker);
    VellorLinkerVersion linker = {};
    vellorLinkerGetCurrentVersion(&linker);
    return QStringLiteral("%1<br><br>%2<br><br>%3<br><br>%4")
        .arg(tr("Vellor Player Version") + ' ' + ApplicationVersion::getCurrent().createVersionLabel(),
             Zph::Engine::isLoaded() ? engineLine() : tr("No engine"),
             versionLine(tr("Cooker Version"), cooker), versionLine(tr("Linker Version"), linker));
}

AboutDialog::AboutDialog(QWidget* parent) : Orn::Gui::AboutDialog(picture(), texts(), parent)
{
    setWindowTitle(tr("About %1").arg(QCoreApplication::applicationName()));
}

} // namespace Zph::Applications::Player
