#include "host/app/Theme.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <QStyle>
#include <QStyleFactory>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace host {

namespace {

struct Colours
{
    QRgb window, base, alternateBase, button, text, placeholder, highlight, link, linkVisited, brightText;
    QRgb toolTipBase, toolTipText;
    QRgb light, midlight, mid, dark, shadow; // the edges of frames, from bright to black
    QRgb disabledText, disabledHighlight, disabledHighlightedText;
};

constexpr Colours lightColours = {
    .window = 0xfff0f0f0,
    .base = 0xffffffff,
    .alternateBase = 0xfff5f7f9,
    .button = 0xffe9e9e9,
    .text = 0xff1b1d1f,
    .placeholder = 0xff6a6d72,
    .highlight = 0xff2a62c4,
    .link = 0xff1a5fb4,
    .linkVisited = 0xff6b3fa0,
    .brightText = 0xffb00020,
    .toolTipBase = 0xffffffdc,
    .toolTipText = 0xff1b1d1f,
    .light = 0xffffffff,
    .midlight = 0xfff6f6f6,
    .mid = 0xffb8b8b8,
    .dark = 0xff9a9a9a,
    .shadow = 0xff6c6c6c,
    .disabledText = 0xff7a7c7f,
    .disabledHighlight = 0xffd0d3d8,
    .disabledHighlightedText = 0xff5c5f63,
};

constexpr Colours darkColours = {
    .window = 0xff303338,
    .base = 0xff1a1b1e,
    .alternateBase = 0xff212327,
    .button = 0xff3c4045,
    .text = 0xffe1e3e6,
    .placeholder = 0xff9a9da3,
    .highlight = 0xff2f65c8,
    .link = 0xff7fb2ff,
    .linkVisited = 0xffc3a6f5,
    .brightText = 0xffff8a80,
    .toolTipBase = 0xff43464b,
    .toolTipText = 0xffe9ebee,
    .light = 0xff52565b,
    .midlight = 0xff44474c,
    .mid = 0xff222427,
    .dark = 0xff1a1b1d,
    .shadow = 0xff0c0d0e,
    .disabledText = 0xff8f9298,
    .disabledHighlight = 0xff44474c,
    .disabledHighlightedText = 0xffb4b7bc,
};

void setTextColour(QPalette &palette, QPalette::ColorGroup group, const QColor &colour)
{
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(group, role, colour);
}

QPalette paletteOf(const Colours &colours)
{
    QPalette palette;
    const std::pair<QPalette::ColorRole, QRgb> roles[] = {
        {QPalette::Window, colours.window},
        {QPalette::Base, colours.base},
        {QPalette::AlternateBase, colours.alternateBase},
        {QPalette::Button, colours.button},
        {QPalette::PlaceholderText, colours.placeholder},
        {QPalette::Highlight, colours.highlight},
        {QPalette::HighlightedText, 0xffffffff},
        {QPalette::Link, colours.link},
        {QPalette::LinkVisited, colours.linkVisited},
        {QPalette::BrightText, colours.brightText},
        {QPalette::ToolTipBase, colours.toolTipBase},
        {QPalette::ToolTipText, colours.toolTipText},
        {QPalette::Light, colours.light},
        {QPalette::Midlight, colours.midlight},
        {QPalette::Mid, colours.mid},
        {QPalette::Dark, colours.dark},
        {QPalette::Shadow, colours.shadow},
    };
    for (const auto &[role, colour] : roles)
        palette.setColor(role, QColor(colour));
    setTextColour(palette, QPalette::All, QColor(colours.text));

    setTextColour(palette, QPalette::Disabled, QColor(colours.disabledText));
    for (const QPalette::ColorRole role : {QPalette::PlaceholderText, QPalette::Link, QPalette::LinkVisited})
        palette.setColor(QPalette::Disabled, role, QColor(colours.disabledText));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(colours.disabledHighlight));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(colours.disabledHighlightedText));
    return palette;
}

void setStyle(const QString &name)
{
    // Setting even the same style polishes every widget anew.
    if (QApplication::style()->objectName().compare(name, Qt::CaseInsensitive) != 0)
        QApplication::setStyle(name);
}

double luminance(const QColor &colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

} // namespace

Theme::Theme(QObject *parent)
    : QObject(parent)
    , m_platformStyle(QApplication::style()->objectName())
    , m_platformPalette(QApplication::palette())
    , m_platformToolTips(QToolTip::palette())
{
    connect(qApp, &QGuiApplication::paletteChanged, this, [this] {
        if (!m_applying)
            Q_EMIT changed();
    });
}

void Theme::apply(Choice choice)
{
    m_choice = choice;
    {
        const QScopedValueRollback<bool> applying(m_applying, true);
        if (choice == Choice::System) {
            setStyle(m_platformStyle);
            QApplication::setPalette(m_platformPalette);
            QToolTip::setPalette(m_platformToolTips);
        } else {
            // The one style that takes every colour from the palette.
            setStyle(QStringLiteral("Fusion"));
            const QPalette palette = paletteOf(choice == Choice::Dark ? darkColours : lightColours);
            QApplication::setPalette(palette);
            QToolTip::setPalette(palette);
        }
    }
    Q_EMIT changed();
}

bool Theme::isDark(const QPalette &palette)
{
    return luminance(palette.color(QPalette::WindowText)) > luminance(palette.color(QPalette::Window));
}

bool Theme::isDark()
{
    return isDark(QApplication::palette());
}

QColor Theme::accent(Accent accent, const QPalette &palette)
{
    struct Tone
    {
        double hue, saturation;
    };
    static constexpr Tone tones[] = {{0.0, 0.85}, {0.10, 0.90}, {0.37, 0.60}, {0.6, 0.04}};
    constexpr double readable = 4.5;

    const Tone tone = tones[static_cast<int>(accent)];
    const QColor grounds[] = {palette.color(QPalette::Base), palette.color(QPalette::AlternateBase),
                              palette.color(QPalette::Window)};
    const double step = isDark(palette) ? 0.02 : -0.02;
    QColor colour;
    for (double lightness = 0.5; lightness >= 0.0 && lightness <= 1.0; lightness += step) {
        // As it will be painted: the rounding may cost the last bit of contrast.
        colour = QColor(QColor::fromHslF(tone.hue, tone.saturation, lightness).rgb());
        if (std::all_of(std::begin(grounds), std::end(grounds),
                        [&](const QColor &ground) { return contrast(colour, ground) >= readable; }))
            return colour;
    }
    return palette.color(QPalette::Text);
}

double Theme::contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace host
