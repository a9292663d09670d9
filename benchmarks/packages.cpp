#include "benchmarks/packages.h"

#include <QDir>
#include <QFile>

namespace Packages {

QString path(const QString& name)
{
    for (const char* folder : {BENCHMARK_SAMPLES, BENCHMARK_PACKAGES}) {
        const QString file = QDir(folder).filePath(name + ".vlrar");
        if (QFile::exists(file))
            return file;
    }
    qFatal("There is no package '%s'", qPrintable(name));
}

void Silent::message(int level, const QString& text)
{
    if (level > 0)
        qFatal("%s", qPrintable(text));
}

Linked::Linked(const QString& archive) : m_linker(m_listener, 0)
{
    QFile file(archive);
    if (!file.open(QIODevice::ReadOnly) || !m_linker.link(file))
        qFatal("Cannot link '%s'", qPrintable(archive));
}

} // namespace Packages
