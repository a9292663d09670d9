#include "orncommon/gui/elidedlabel.h"
#include "orncommon/gui/style.h"

#include <QApplication>
#include <QDirIterator>
#include <QDoubleSpinBox>
#include <QFontMetrics>
#include <QIcon>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Orn::Gui;

namespace {

TEST(ElidedLabel, TheTextFitsTheWidthAndComesBackWhole)
{
    const QString name = QStringLiteral("A name that is far too long");
    for (const QString& form : {QStringLiteral("%1"), QStringLiteral("<b>%1</b>")}) {
        ElidedLabel label(form.arg(name));
        label.resize(60, 20);
        label.show();
        const QString shown = label.text();
        EXPECT_TRUE(shown.contains(QChar(0x2026))) << shown.toStdString();
        EXPECT_EQ(shown.startsWith("<b>"), form.startsWith("<b>"));
        EXPECT_EQ(label.fullText(), form.arg(name));
        EXPECT_EQ(label.minimumSizeHint().width(), 0);
        label.resize(label.sizeHint());
        EXPECT_EQ(label.text(), form.arg(name));
    }
}

TEST(Style, AWheelOverAValueScrollsTheAreaUnlessTheValueHasTheFocus)
{
    QApplication::setStyle(new Style);
    QScrollArea area;
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    auto* box = new QDoubleSpinBox;
    layout->addWidget(box);
    content->setMinimumHeight(2000);
    area.setWidget(content);
    area.resize(200, 200);
    area.show();
    area.setFocus();
    QWheelEvent wheel(QPointF(5, 5), box->mapToGlobal(QPoint(5, 5)), {}, QPoint(0, -120), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(box, &wheel);
    EXPECT_EQ(box->value(), 0.0);
    EXPECT_FALSE(wheel.isAccepted());
}

TEST(Resources, EveryIconCanBeDrawn)
{
    int icons = 0;
    for (const char* folder : {":/orn", ":/zph"}) {
        QDirIterator files(folder, {"*.svg", "*.png"}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            const QImage picture = QIcon(path).pixmap(32, 32).toImage();
            ASSERT_FALSE(picture.isNull()) << path.toStdString();
            bool drawn = false;
            for (int y = 0; y < picture.height() && !drawn; ++y)
                for (int x = 0; x < picture.width() && !drawn; ++x)
                    drawn = qAlpha(picture.pixel(x, y)) > 0;
            EXPECT_TRUE(drawn) << path.toStdString();
            ++icons;
        }
    }
    EXPECT_GT(icons, 40);
}

} // namespace
