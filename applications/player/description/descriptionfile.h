#pragma once

#include <QByteArray>
#include <QDomDocument>

namespace Zph::Applications::Player {

// Parses the text of a package description, keeping line numbers. Returns false, leaves a null document and
// fills `error` ("line 3, column 7: ...") for a text that isn't well-formed XML or that nests its elements
// deeper than any description does: the document tree is walked and freed recursively, so depth is stack.
bool parseDescription(const QByteArray& xml, QDomDocument& document, QString* error = nullptr);

} // namespace Zph::Applications::Player
