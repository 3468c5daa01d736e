#pragma once

#include <QColor>
#include <QObject>
#include <QPalette>
#include <QString>

namespace host {

/// Light, dark, or the colours that the platform brought.
class Theme : public QObject
{
    Q_OBJECT

public:
    enum class Choice { System, Light, Dark };
    Q_ENUM(Choice)

    enum class Accent { Error, Warning, Good, Muted };

    /// After the application object, before anyone changes its palette: remembers
    /// the platform's style and palette as Choice::System.
    explicit Theme(QObject *parent = nullptr);

    void apply(Choice choice);
    Choice choice() const { return m_choice; }

    /// Whether light text stands on a dark ground.
    static bool isDark(const QPalette &palette);
    /// Of the application's present palette.
    static bool isDark();

    /// A colour for text on the palette's Base, AlternateBase and Window.
    static QColor accent(Accent accent, const QPalette &palette);
    /// Contrast ratio, 1 (equal) to 21 (black and white); 4.5 is easily read.
    static double contrast(const QColor &one, const QColor &other);

Q_SIGNALS:
    /// The application's palette changed, by apply() or by the platform.
    void changed();

private:
    const QString m_platformStyle;
    const QPalette m_platformPalette;
    const QPalette m_platformToolTips;
    Choice m_choice = Choice::System;
    bool m_applying = false;
};

} // namespace host
