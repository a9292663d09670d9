#pragma once

#include "applications/player/images/widgets/imageserverfactorybase.h"

#include <QStringList>

#include <memory>

// The program's one list of factories. Main thread.
namespace Zph::Applications::Player {

class ImageServerBase;

// Those registered first are asked first.
void registerImageServerFactory(std::unique_ptr<ImageServerFactoryBase> factory);

// The program's own: sequences, then still pictures. At start-up, behind the codecs.
void registerDefaultImageServerFactories();

// The server of the first factory that makes one; null when none does.
std::unique_ptr<ImageServerBase> createImageServer(const QString& path, QObject* parent);

// Of the names of all files that a factory may know: "*.png", "*.tga"...
QStringList imageServerPatterns();

// Of a file dialog: everything at once, each factory's files, all files.
QString imageServerFileFilter();

} // namespace Zph::Applications::Player
