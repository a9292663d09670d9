#include "applications/player/images/widgets/imageserverfactories.h"

#include "applications/player/images/widgets/imageserverbase.h"
#include "applications/player/images/widgets/imageserverfactoryseq.h"
#include "applications/player/images/widgets/imageserverfactorystill.h"

#include <QCoreApplication>
#include <QPointer>

#include <vector>

namespace Zph::Applications::Player {

namespace {

std::vector<std::unique_ptr<ImageServerFactoryBase>>& factories()
{
    static std::vector<std::unique_ptr<ImageServerFactoryBase>> list;
    return list;
}

} // namespace

void registerImageServerFactory(std::unique_ptr<ImageServerFactoryBase> factory)
{
    factories().push_back(std::move(factory));
}

void registerDefaultImageServerFactories()
{
    registerImageServerFactory(std::make_unique<ImageServerFactorySeq>());
    registerImageServerFactory(std::make_unique<ImageServerFactoryStill>());
}

std::unique_ptr<ImageServerBase> createImageServer(const QString& path, QObject* parent)
{
    const QPointer<QObject> owner(parent);
    for (const auto& factory : factories()) {
        std::unique_ptr<ImageServerBase> server(factory->create(path, parent));
        if (server || (parent && !owner))
            return server;
    }
    return nullptr;
}

QStringList imageServerPatterns()
{
    QStringList patterns;
    for (const auto& factory : factories())
        patterns += factory->filters().split(' ', Qt::SkipEmptyParts);
    patterns.removeDuplicates();
    return patterns;
}

QString imageServerFileFilter()
{
    QString kinds;
    for (const auto& factory : factories())
        kinds += QStringLiteral(";;%1 (%2)").arg(factory->name(), factory->filters());
    return QCoreApplication::translate("Zph::Applications::Player::ImageServer",
                                       "All supported types (%1)%2;;All files (*.*)")
        .arg(imageServerPatterns().join(' '), kinds);
}

} // namespace Zph::Applications::Player
