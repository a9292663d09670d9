#pragma once

#include <QString>
#include <QUrl>

/// Where the program and what ships with it lie, and the web addresses that its menus open.
namespace Zph::Applications::Player::Installation {

/// The folder "data" of the installation; empty when there is none.
QString samplesFolder();

/// Where the open dialog starts: the folder of the last file, or the samples, or the documents.
QString openFolder();

QUrl makerSite();
QUrl documentationSite();
QUrl feedbackSite();

/// Wall-clock time since the process began, in milliseconds; 0 where the system doesn't tell.
qint64 processAge();

} // namespace Zph::Applications::Player::Installation
