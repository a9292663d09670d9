#pragma once

#include "applications/player/session/cookingaliases.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QStringList>
#include <QVector>

#include <vellor/cooker.h>

namespace Zph::Applications::Player {

class PackageListener;

/// What the user chose for cooking.
struct CookingOptions
{
    /// Base-2 logarithm of the largest width and height of a picture; 0 means none.
    int sizeLimit = 0;
    /// The choices of the menu, in its order: bit 0 output size, bit 1 pixel size, bit 2 random seed stay
    /// inputs.
    int dynamicState = 0;
    QVector<CookingAlias> aliases;
};

/// One cooking: from authoring packages to an assembly and its description. What it gives lives as long as
/// the object. Main thread.
class PackageCooker
{
    Q_DECLARE_TR_FUNCTIONS(Zph::Applications::Player::PackageCooker)

public:
    PackageCooker(PackageListener& listener, CookingOptions options);
    ~PackageCooker();
    PackageCooker(const PackageCooker&) = delete;
    PackageCooker& operator=(const PackageCooker&) = delete;

    /// Cooks the packages together. A failure has been told to the listener. A package that can't be opened
    /// is told too, and the ones before it are cooked.
    bool cook(const QStringList& paths);

    /// A view of the assembly. Empty before a successful cook(), as is the description.
    QByteArray assembly() const { return m_assembly; }
    /// A view of the XML description, UTF-8.
    QByteArray description() const { return m_description; }

    static QString versionText();
    static QString errorMessage(int code);
    /// The menu's bits in the order of the cooker (VellorCookerDynamic).
    static quint32 dynamicMask(int dynamicState);

private:
    static void onStage(VellorCookerContext* context, int32_t stage);
    static void onMessage(VellorCookerContext* context, int32_t level, const char* text);

    quint32 run(const QStringList& paths);
    quint32 createContext();
    void pushPackages(const QStringList& paths);
    void pushAliases();
    quint32 takeResults();

    PackageListener& m_listener;
    CookingOptions m_options;
    VellorCookerContext* m_context = nullptr;
    VellorCookerHandle* m_handle = nullptr;
    QByteArray m_assembly;
    QByteArray m_description;
};

} // namespace Zph::Applications::Player
