// Cell painting without the focus frame.
#pragma once

#include <QStyledItemDelegate>

/// A delegate that never paints a focus frame: users select rows, not cells.
class NoFocusDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    ~NoFocusDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};
