#include "applications/player/description/alterationlinks.h"

#include "applications/player/description/descriptionindex.h"

namespace Zph::Applications::Player {

namespace {

bool readNumber(const QDomElement& element, const char* attribute, quint32& number)
{
    bool valid = false;
    number = element.attribute(QLatin1String(attribute)).toUInt(&valid, 10);
    return valid;
}

QHash<quint32, quint32> readOutputUids(const QDomElement& root)
{
    QHash<quint32, quint32> uids;
    const QDomElement outputs = root.firstChildElement(QStringLiteral("outputs"));
    for (const QDomElement& output : childElements(outputs, QStringLiteral("output"))) {
        quint32 index = 0;
        quint32 uid = 0;
        if (readNumber(output, "index", index) && readNumber(output, "uid", uid))
            uids.insert(index, uid);
    }
    return uids;
}

std::set<quint32> alteredUids(const QString& indexes, const QHash<quint32, quint32>& uids)
{
    std::set<quint32> altered;
    for (const QString& part : indexes.split(',', Qt::SkipEmptyParts)) {
        bool valid = false;
        const quint32 index = part.toUInt(&valid, 10);
        const auto found = uids.constFind(index);
        if (valid && found != uids.constEnd())
            altered.insert(*found);
    }
    return altered;
}

} // namespace

AlterationLinks readAlterationLinks(const QDomDocument& document, size_t inputCount)
{
    const QString alterOutputs = QStringLiteral("alteroutputs");
    const QDomElement root = document.documentElement();
    const QHash<quint32, quint32> uids = readOutputUids(root);
    AlterationLinks links;
    const QDomElement inputs = root.firstChildElement(QStringLiteral("inputs"));
    for (const QDomElement& input : childElements(inputs, QStringLiteral("input"))) {
        quint32 index = 0;
        if (!input.hasAttribute(alterOutputs) || !readNumber(input, "index", index) || index >= inputCount)
            continue;
        if (links.size() <= index)
            links.resize(size_t(index) + 1);
        links[index] = alteredUids(input.attribute(alterOutputs), uids);
    }
    return links;
}

} // namespace Zph::Applications::Player
