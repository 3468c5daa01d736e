#include "ui/DataGraphForm.h"

#include "ui_DataGraphForm.h"

void CxDataGraphForm::onBtnExport(int iExportType)
{
    if (iExportType != CxExportToolButton::eExportFile && iExportType != CxExportToolButton::eExportClipboard)
        return;
    // Of the size on the screen.
    const QImage image = ui->plot->toPixmap(0, 0, 1.0).toImage();
    CxExportToolButton::exportImage(image, static_cast<CxExportToolButton::ExExportType>(iExportType), this,
                                    QStringLiteral("PNG (*.png);;JPEG (*.jpg);;BMP Bitmaps (*.bmp)"));
}
