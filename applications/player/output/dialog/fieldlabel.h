#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace Zph::Applications::Player {

/// A label in front of a field, which gets its text as accessible name.
QLabel* fieldLabel(QWidget* field, const QString& text, QWidget* parent);

} // namespace Zph::Applications::Player
