#include "host/app/ParameterDelegate.h"

#include "host/app/ParameterModel.h"

#include <QComboBox>
#include <QSpinBox>

#include <algorithm>
#include <limits>

namespace host {

namespace {

const ParameterDescription *descriptionOf(const QModelIndex &index)
{
    const auto *model = qobject_cast<const ParameterModel *>(index.model());
    return model ? model->description(index) : nullptr;
}

/// Values are written with 32 bits.
int bounded(std::int64_t value)
{
    return static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace

QWidget *ParameterDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                         const QModelIndex &index) const
{
    const ParameterDescription *description = descriptionOf(index);
    if (!description)
        return nullptr;
    if (!description->choices.empty())
        return createChoices(parent, *description);
    auto *spinBox = new QSpinBox(parent);
    spinBox->setFrame(false);
    spinBox->setRange(bounded(description->minimum), bounded(description->maximum));
    return spinBox;
}

QWidget *ParameterDelegate::createChoices(QWidget *parent, const ParameterDescription &description) const
{
    auto *comboBox = new QComboBox(parent);
    for (const ParameterChoice &choice : description.choices)
        comboBox->addItem(QString::fromStdString(choice.name), qlonglong{choice.value});
    // A choice is final: nobody should have to press Return after it.
    auto *self = const_cast<ParameterDelegate *>(this);
    connect(comboBox, QOverload<int>::of(&QComboBox::activated), self,
            [self, comboBox] { self->finish(comboBox); });
    return comboBox;
}

void ParameterDelegate::finish(QWidget *editor)
{
    Q_EMIT commitData(editor);
    Q_EMIT closeEditor(editor);
}

void ParameterDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QVariant value = index.data(Qt::EditRole);
    if (auto *comboBox = qobject_cast<QComboBox *>(editor))
        comboBox->setCurrentIndex(value.isValid() ? comboBox->findData(value) : -1);
    else if (auto *spinBox = qobject_cast<QSpinBox *>(editor))
        spinBox->setValue(bounded(value.toLongLong()));
}

void ParameterDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                     const QModelIndex &index) const
{
    if (auto *comboBox = qobject_cast<QComboBox *>(editor)) {
        model->setData(index, comboBox->currentData());
    } else if (auto *spinBox = qobject_cast<QSpinBox *>(editor)) {
        spinBox->interpretText();
        model->setData(index, qlonglong{spinBox->value()});
    }
}

void ParameterDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const ParameterDescription *description = descriptionOf(index);
    if (description && !description->writable)
        option->palette.setColor(QPalette::Text, option->palette.color(QPalette::Disabled, QPalette::Text));
    if (index.column() == ParameterModel::Name)
        option->textElideMode = Qt::ElideMiddle; // names differ in front and at the end
}

} // namespace host
