#pragma once

#include <vellor/engine.h>

#include <QDomElement>
#include <QStringList>

namespace Zph::Applications::Player {

// What an output list entry is written from.
struct OutputLabelSource
{
    QString graph; // the graph as the list names it
    VellorOutputDesc record{};
    int index = 0;
    QDomElement element; // the description's `output`, or null
};

// The usages of an `output` element: the names of its channels, or else its `usage` attribute; in the order
// of the document.
QStringList outputUsages(const QDomElement& output);

// "rgb:basecolor|a:opacity": what each channel is for, then the element's own usage behind one more bar
// unless a channel names it.
QString outputUsageText(const QDomElement& output);

// "Graph^512x512 [RGBA-8bits] - index:0 uid:7 - usage:rgb:basecolor - 'Base Color' (id:color)": what the
// engine's record says, then what the description adds.
QString outputListText(const OutputLabelSource& source);

// "index:0 uid:7".
QString outputShortText(int index, quint32 uid);

// How remote mode names the outputs of index 0 to 3; empty beyond.
QString remoteOutputName(int index);

} // namespace Zph::Applications::Player
