#include "applications/player/images/widgets/imageserverfactoryseq.h"

#include "applications/player/images/widgets/imageserverseq.h"

#include <QCoreApplication>
#include <QInputDialog>
#include <QPointer>

#include <limits>

namespace Zph::Applications::Player {

namespace {

QString text(const char* source)
{
    return QCoreApplication::translate("Zph::Applications::Player::ImageServer", source);
}

// The window stays, whatever happens to the widget meanwhile.
QWidget* windowOf(QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    return widget ? widget->window() : nullptr;
}

} // namespace

QString ImageServerFactorySeq::name() const
{
    return text(QT_TRANSLATE_NOOP("Zph::Applications::Player::ImageServer", "Images sequence"));
}

ImageServerBase* ImageServerFactorySeq::create(const QString& path, QObject* parent)
{
    std::optional<ImageSequence> sequence = findImageSequence(path);
    if (!sequence)
        return nullptr;
    const QPointer<QObject> owner(parent);
    bool isAccepted = false;
    sequence->frameCount = QInputDialog::getInt(
        windowOf(parent), text(QT_TRANSLATE_NOOP("Zph::Applications::Player::ImageServer", "Image sequence")),
        text(QT_TRANSLATE_NOOP("Zph::Applications::Player::ImageServer",
                               "Image sequence found. Please confirm the number of frames (or Cancel to use "
                               "still image only):")),
        sequence->frameCount, 1, std::numeric_limits<int>::max(), 1, &isAccepted);
    return isAccepted && (owner || !parent) ? new ImageServerSeq(*sequence, parent) : nullptr;
}

} // namespace Zph::Applications::Player
