#include "applications/player/description/descriptionfile.h"

#include <QXmlStreamReader>

namespace Zph::Applications::Player {

namespace {

constexpr int maximumDepth = 200;

QString located(qint64 line, qint64 column, const QString& what)
{
    return QStringLiteral("line %1, column %2: %3").arg(line).arg(column).arg(what);
}

// The error of a text that can't be taken, or nothing.
QString scan(const QByteArray& xml)
{
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > maximumDepth)
                return located(reader.lineNumber(), reader.columnNumber(),
                               QStringLiteral("elements are nested too deep"));
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? located(reader.lineNumber(), reader.columnNumber(), reader.errorString())
                             : QString();
}

} // namespace

bool parseDescription(const QByteArray& xml, QDomDocument& document, QString* error)
{
    document = QDomDocument();
    QString problem = scan(xml);
    if (problem.isEmpty()) {
        QDomDocument parsed;
        int line = 0;
        int column = 0;
        QXmlStreamReader reader(xml);
        reader.setNamespaceProcessing(false);
        if (parsed.setContent(&reader, false, &problem, &line, &column)) {
            document = parsed;
            return true;
        }
        problem = located(line, column, problem);
    }
    if (error)
        *error = problem;
    return false;
}

} // namespace Zph::Applications::Player
