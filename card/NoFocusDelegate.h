// Cell painting without the focus frame.
#pragma once

#include <QStyledItemDelegate>

/// Paints like the base delegate, but never a focus frame: users select rows, not cells.
class NoFocusDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    ~NoFocusDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};
