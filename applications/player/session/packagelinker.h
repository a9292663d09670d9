#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QString>

#include <vellor/linker.h>

class QDomDocument;
class QIODevice;

namespace Zph::Applications::Player {

class PackageListener;

/// One link: from an assembly or an archive to the binary image for the loaded engine. What it gives lives as
/// long as the object. Main thread.
class PackageLinker
{
    Q_DECLARE_TR_FUNCTIONS(Zph::Applications::Player::PackageLinker)

public:
    /// `sizeLimit` is the base-2 logarithm of the largest width and height of a picture; 0 means none.
    PackageLinker(PackageListener& listener, int sizeLimit);
    ~PackageLinker();
    PackageLinker(const PackageLinker&) = delete;
    PackageLinker& operator=(const PackageLinker&) = delete;

    /// Reads `device`, which is open, to its end and links that. A failure has been told to the listener.
    bool link(QIODevice& device);

    /// A view of the binary image. Empty before a successful link().
    QByteArray binary() const { return m_binary; }
    /// The XML descriptions that came with the package, in the order in which they were found.
    const QList<QByteArray>& descriptions() const { return m_descriptions; }
    /// Fills `document` from the first description that parses, or clears it; tells the listener which.
    void takeDescription(QDomDocument& document) const;

    /// What every line of the linker begins with.
    static QString prefix();
    static QString versionText();
    static QString errorMessage(int code);

private:
    static void onMessage(VellorLinkerContext* context, int32_t level, const char* text);
    static void onXml(VellorLinkerContext* context, int32_t index, const char* xml);

    quint32 run(QIODevice& device);
    void stage(const QString& text) const;

    PackageListener& m_listener;
    int m_sizeLimit;
    VellorLinkerContext* m_context = nullptr;
    VellorLinkerHandle* m_handle = nullptr;
    QByteArray m_binary;
    QList<QByteArray> m_descriptions;
};

} // namespace Zph::Applications::Player
