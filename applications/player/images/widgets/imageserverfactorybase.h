#pragma once

#include <QString>

class QObject;

namespace Zph::Applications::Player {

class ImageServerBase;

// Makes the image servers of one kind. Lives from start-up to the end.
class ImageServerFactoryBase
{
public:
    virtual ~ImageServerFactoryBase() = default;

    virtual QString name() const = 0;
    // Patterns of file names with blanks between them: "*.png *.tga".
    virtual QString filters() const = 0;
    // Null when the file is none of this kind. May ask the user something, in a dialog over the window that
    // `parent` is in; null too when `parent` is gone by then.
    virtual ImageServerBase* create(const QString& path, QObject* parent) = 0;
};

} // namespace Zph::Applications::Player
