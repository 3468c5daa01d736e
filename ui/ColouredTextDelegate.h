#pragma once

#include <QStyledItemDelegate>

/// Draws items that have a colour of their own, which suits a dark ground, on
/// such a ground where the table's is light. Others are drawn as usual.
class ColouredTextDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
