#include "ui/ColouredTextDelegate.h"

namespace {

/// That of the plot in the usual hosts.
constexpr QRgb darkGround = qRgb(30, 32, 36);

bool isLight(const QColor &colour)
{
    return qGray(colour.rgb()) > 127;
}

} // namespace

void ColouredTextDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    // When it is drawn: the user may change the host's colours at any time.
    if (index.data(Qt::ForegroundRole).isValid() && isLight(option->palette.color(QPalette::Base)))
        option->backgroundBrush = QColor(darkGround);
}
