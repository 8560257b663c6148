// Cell painting without the focus frame.
#pragma once

#include <QStyledItemDelegate>

/// Paints as the base delegate does, but no cell ever shows a focus frame: rows are what the user
/// chooses.
class NoFocusDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    ~NoFocusDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};
