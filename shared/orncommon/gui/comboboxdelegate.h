#pragma once

#include <QStyledItemDelegate>

namespace Orn::Gui {

/// Draws the list of a combo box as the style sheet says, where Qt's own delegate knows only the palette.
class ComboBoxDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace Orn::Gui
