#pragma once

#include <QStyledItemDelegate>

namespace host {

struct ParameterDescription;

/// Edits the values of a ParameterModel: a combo box of the choices, or a spin
/// box within the parameter's limits.
class ParameterDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    QWidget *createChoices(QWidget *parent, const ParameterDescription &description) const;
    void finish(QWidget *editor);
};

} // namespace host
