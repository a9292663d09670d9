#include "fieldlabel.h"

#include <QLabel>

namespace Zph::Applications::Player {

QLabel* fieldLabel(QWidget* field, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setBuddy(field);
    field->setAccessibleName(text.trimmed().remove(':'));
    return label;
}

} // namespace Zph::Applications::Player
