#include "orncommon/gui/comboboxdelegate.h"

#include <QPainter>

namespace Orn::Gui {

namespace {

constexpr int separatorHeight = 7;
constexpr int minimumRowHeight = 24;

/// How QComboBox::insertSeparator marks its items.
bool isSeparator(const QModelIndex& index)
{
    return index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator");
}

} // namespace

void ComboBoxDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const
{
    if (!isSeparator(index)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QRect line(option.rect.left() + 4, option.rect.center().y(), option.rect.width() - 8, 1);
    painter->fillRect(line, option.palette.color(QPalette::Button).lighter(140));
}

QSize ComboBoxDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize hint = QStyledItemDelegate::sizeHint(option, index);
    if (isSeparator(index))
        return {hint.width(), separatorHeight};
    return hint.expandedTo({0, minimumRowHeight});
}

} // namespace Orn::Gui
