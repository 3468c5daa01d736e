#include "host/app/Theme.h"

#include <QSignalSpy>
#include <QStyle>
#include <QToolTip>
#include <QWidget>
#include <QtTest>

using namespace host;

Q_DECLARE_METATYPE(host::Theme::Choice)

class ThemeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void measuresContrast();
    void isReadable_data();
    void isReadable();
    void setsEveryRole();
    void showsWhatIsDisabled();
    void accentsAreReadable_data();
    void accentsAreReadable();
    void givesThePlatformBack();
    void reachesWidgets();
    void tellsOfItsChanges();
    void tellsOfThePlatformsChanges();

private:
    const QPalette m_platform = QApplication::palette();
    const QPalette m_platformToolTips = QToolTip::palette();
};

void ThemeTest::init()
{
    // Another style than the one that the theme brings.
    QApplication::setStyle("windows");
}

void ThemeTest::cleanup()
{
    QApplication::setPalette(m_platform);
    QToolTip::setPalette(m_platformToolTips);
}

void ThemeTest::measuresContrast()
{
    QCOMPARE(Theme::contrast(Qt::black, Qt::white), 21.0);
    QCOMPARE(Theme::contrast(Qt::white, Qt::black), 21.0);
    QCOMPARE(Theme::contrast(Qt::red, Qt::red), 1.0);
    QVERIFY(qAbs(Theme::contrast(QColor(0x77, 0x77, 0x77), Qt::white) - 4.478) < 0.001);
}

void ThemeTest::isReadable_data()
{
    QTest::addColumn<Theme::Choice>("choice");
    QTest::addColumn<QPalette::ColorGroup>("group");
    QTest::addColumn<QPalette::ColorRole>("text");
    QTest::addColumn<QPalette::ColorRole>("ground");
    QTest::addColumn<double>("contrast");

    const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base},
        {QPalette::Text, QPalette::AlternateBase},
        {QPalette::Text, QPalette::Window},
        {QPalette::ButtonText, QPalette::Button},
        {QPalette::HighlightedText, QPalette::Highlight},
        {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::PlaceholderText, QPalette::Base},
        {QPalette::Link, QPalette::Base},
        {QPalette::Link, QPalette::Window},
        {QPalette::LinkVisited, QPalette::Base},
        {QPalette::LinkVisited, QPalette::Window},
        {QPalette::BrightText, QPalette::Window},
    };
    const auto names = QMetaEnum::fromType<QPalette::ColorRole>();
    for (const Theme::Choice choice : {Theme::Choice::Light, Theme::Choice::Dark}) {
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            for (const auto &[text, ground] : pairs) {
                QTest::addRow("%s %d %s on %s", choice == Theme::Choice::Dark ? "dark" : "light", int(group),
                              names.valueToKey(text), names.valueToKey(ground))
                    << choice << group << text << ground << (group == QPalette::Disabled ? 3.0 : 4.5);
            }
        }
    }
}

void ThemeTest::isReadable()
{
    QFETCH(Theme::Choice, choice);
    QFETCH(QPalette::ColorGroup, group);
    QFETCH(QPalette::ColorRole, text);
    QFETCH(QPalette::ColorRole, ground);
    QFETCH(double, contrast);
    Theme theme;
    theme.apply(choice);
    for (const QPalette &palette : {QApplication::palette(), QToolTip::palette()}) {
        const QColor colour = palette.color(group, text);
        QCOMPARE(colour.alpha(), 255);
        const double found = Theme::contrast(colour, palette.color(group, ground));
        QVERIFY2(found >= contrast, qPrintable(QString::number(found)));
    }
}

void ThemeTest::setsEveryRole()
{
    // A role that is left out would come from the platform's palette.
    for (const Theme::Choice choice : {Theme::Choice::Light, Theme::Choice::Dark}) {
        Theme theme;
        theme.apply(choice);
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            if (role != QPalette::NoRole)
                QVERIFY2(QApplication::palette().resolve() & (1u << role), qPrintable(QString::number(role)));
        }
    }
}

void ThemeTest::showsWhatIsDisabled()
{
    for (const Theme::Choice choice : {Theme::Choice::Light, Theme::Choice::Dark}) {
        Theme theme;
        theme.apply(choice);
        const QPalette palette = QApplication::palette();
        for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            const double contrast = Theme::contrast(palette.color(QPalette::Disabled, role),
                                                    palette.color(QPalette::Active, role));
            QVERIFY2(contrast > 2.0, qPrintable(QString::number(contrast)));
        }
    }
}

void ThemeTest::accentsAreReadable_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("black") << QPalette(Qt::black);
    QTest::newRow("white") << QPalette(Qt::white);
    QTest::newRow("grey") << QPalette(QColor(0xe0, 0xe0, 0xe0));
    QTest::newRow("dark blue") << QPalette(QColor(0x10, 0x20, 0x48));
    Theme theme;
    theme.apply(Theme::Choice::Light);
    QTest::newRow("light") << QApplication::palette();
    theme.apply(Theme::Choice::Dark);
    QTest::newRow("dark") << QApplication::palette();
}

void ThemeTest::accentsAreReadable()
{
    QFETCH(QPalette, palette);
    using Accent = Theme::Accent;
    QSet<QRgb> colours;
    for (const Accent accent : {Accent::Error, Accent::Warning, Accent::Good, Accent::Muted}) {
        const QColor colour = Theme::accent(accent, palette);
        colours.insert(colour.rgb());
        for (const QPalette::ColorRole ground : {QPalette::Base, QPalette::AlternateBase, QPalette::Window}) {
            const double contrast = Theme::contrast(colour, palette.color(ground));
            QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
        }
    }
    QCOMPARE(colours.size(), 4);
    const QColor error = Theme::accent(Accent::Error, palette);
    QVERIFY(error.red() > error.green() && error.red() > error.blue());
}

void ThemeTest::givesThePlatformBack()
{
    const QString style = QApplication::style()->objectName();
    Theme theme;
    QCOMPARE(theme.choice(), Theme::Choice::System);
    theme.apply(Theme::Choice::Dark);
    QCOMPARE(theme.choice(), Theme::Choice::Dark);
    QVERIFY(Theme::isDark());
    QCOMPARE(QApplication::style()->objectName().toLower(), QString("fusion"));
    theme.apply(Theme::Choice::Light);
    QVERIFY(!Theme::isDark());
    theme.apply(Theme::Choice::System);
    QCOMPARE(QApplication::palette(), m_platform);
    QCOMPARE(QToolTip::palette(), m_platformToolTips);
    QCOMPARE(QApplication::style()->objectName(), style);
}

void ThemeTest::reachesWidgets()
{
    Theme theme;
    QWidget widget;
    widget.resize(20, 20);
    theme.apply(Theme::Choice::Dark);
    QVERIFY(Theme::isDark(widget.palette()));
    QVERIFY(widget.grab().toImage().pixelColor(10, 10).lightness() < 100);
    theme.apply(Theme::Choice::Light);
    QVERIFY(!Theme::isDark(widget.palette()));
    QVERIFY(widget.grab().toImage().pixelColor(10, 10).lightness() > 200);
}

void ThemeTest::tellsOfItsChanges()
{
    Theme theme;
    QSignalSpy changed(&theme, &Theme::changed);
    bool dark = false;
    connect(&theme, &Theme::changed, this, [&] { dark = Theme::isDark(); });
    theme.apply(Theme::Choice::Dark);
    QCOMPARE(changed.size(), 1);
    QVERIFY(dark);
    theme.apply(Theme::Choice::System);
    QCOMPARE(changed.size(), 2);
    QVERIFY(!dark);
}

void ThemeTest::tellsOfThePlatformsChanges()
{
    Theme theme;
    QSignalSpy changed(&theme, &Theme::changed);
    QApplication::setPalette(QPalette(QColor(30, 30, 30)));
    QCOMPARE(changed.size(), 1);
    QVERIFY(Theme::isDark());
}

QTEST_MAIN(ThemeTest)
#include "ThemeTest.moc"
