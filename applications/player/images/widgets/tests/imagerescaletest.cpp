#include "applications/player/images/widgets/imagerescale.h"
#include "applications/player/images/widgets/croppreview.h"
#include "applications/player/images/widgets/imageserverseq.h"
#include "orncommon/image/surfaceoperations.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using namespace Zph::Applications::Player;

ImageOptions optionsWith(quint32 flags)
{
    ImageOptions options;
    options.flags = flags;
    options.paddingColor = QColor(10, 20, 30, 40);
    return options;
}

TEST(ImageRescale, GivesBackWhatItWasGiven)
{
    ImageOptions cropped = optionsWith(ImageOptions::Exact);
    cropped.cropLeft = 1, cropped.cropTop = 2, cropped.cropRight = 3, cropped.cropBottom = 4;
    ImageOptions half = optionsWith(ImageOptions::Exact);
    half.cropLeft = 7;
    for (const ImageOptions& options :
         {optionsWith(0), optionsWith(1), optionsWith(2 | ImageOptions::Mosaic), cropped, half})
        EXPECT_EQ(ImageRescale(options).options(), options);

    ImageRescale dialog(optionsWith(0));
    dialog.findChildren<QSpinBox*>().first()->setValue(5); // the top
    const ImageOptions changed = dialog.options();
    EXPECT_EQ(changed.cropTop, 5);
    EXPECT_EQ(changed.cropLeft, 0) << "one set sets all, or the crop would count for nothing";
}

TEST(ImageRescale, OffersWhatTheModeUses)
{
    ImageRescale dialog(optionsWith(ImageOptions::Stretch));
    auto* mode = dialog.findChild<QComboBox*>();
    auto* mosaic = dialog.findChild<QCheckBox*>();
    auto* color = dialog.findChild<QPushButton*>(QString(), Qt::FindDirectChildrenOnly);
    const auto choose = [&](int index) {
        mode->setCurrentIndex(index);
        emit mode->activated(index);
    };
    EXPECT_FALSE(mosaic->isEnabled() || color->isEnabled());
    choose(1);
    EXPECT_EQ(dialog.options().flags, quint32(ImageOptions::KeepAspect));
    EXPECT_TRUE(mosaic->isEnabled() && color->isEnabled());
    mosaic->setChecked(true);
    EXPECT_FALSE(color->isEnabled());
    choose(2);
    EXPECT_EQ(dialog.options().flags, quint32(ImageOptions::Exact | ImageOptions::Mosaic));
    choose(0);
    EXPECT_FALSE(mosaic->isEnabled());
}

TEST(ImageRescale, ShowsWhatACroppingLeaves)
{
    using namespace Orn::Surfaces;
    ImageOptions options;
    options.cropLeft = options.cropTop = 4, options.cropRight = options.cropBottom = 0;
    ImageRescale dialog(options);
    auto* preview = dialog.findChild<CropPreview*>();
    const auto says = [&](const QString& text) {
        for (const auto* label : dialog.findChildren<QLabel*>())
            if (label->text() == text && !label->isHidden())
                return true;
        return false;
    };
    EXPECT_TRUE(says("Cropping"));
    EXPECT_FALSE(says("nothing is left")) << "no picture";
    const auto picture = QSharedPointer<Surface>::create(SurfaceDescription(60, 40, RGBA8));
    Orn::Image::Core::clear(*picture, 1, 0, 0, 1);
    dialog.setPicture(picture);
    EXPECT_EQ(preview->kept(), QRect(4, 4, 56, 36));
    EXPECT_TRUE(says("56x36 px"));
    dialog.show();
    const auto redAt = [&](double x, double y) {
        const QImage image = preview->grab().toImage();
        return image.pixelColor(int(image.width() * x), int(image.height() * y)).red();
    };
    const auto spinBoxes = dialog.findChildren<QSpinBox*>();
    spinBoxes[2]->setValue(28); // the right: half is left
    EXPECT_TRUE(QTest::qWaitFor([&] { return redAt(0.4, 0.5) > 250; }));
    EXPECT_LT(redAt(0.7, 0.5), 128) << "cut off";
    spinBoxes[2]->setValue(56);
    EXPECT_TRUE(says("nothing is left"));
    EXPECT_LT(redAt(0.4, 0.5), 128);
}

TEST(ImageRescale, IsReachedByKeysInTheOrderOfItsRows)
{
    ImageServerSeq server({"f*.png", 1, 1, 3}, nullptr);
    ImageRescale dialog(optionsWith(ImageOptions::Exact));
    dialog.setPanel(server.createPanel(&dialog));
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    dialog.findChild<QComboBox*>()->setFocus();
    std::string reached;
    for (int i = 0; i < 10; ++i) {
        const QWidget* widget = dialog.focusWidget();
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        reached +=
            (button && !button->text().isEmpty() ? button->text() : widget->accessibleName()).toStdString() +
            '\n';
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(reached,
              "Rescale\n Mosaic filling\nPadding color\nPixels cut off at the top\nPixels cut off at "
              "the left\nPixels cut off at the right\nPixels cut off at the bottom\nFrame rate:\n"
              "Apply\nCancel\n");
    dialog.findChild<QPushButton*>(QString(), Qt::FindDirectChildrenOnly)->setFocus();
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted) << "Enter, wherever it is pressed";
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

TEST(ImageRescale, ThePanelCountsWhenItIsAccepted)
{
    ImageServerSeq server({"f*.png", 1, 1, 3}, nullptr);
    server.setFps(12);
    for (const bool accept : {false, true}) {
        ImageRescale dialog(optionsWith(0));
        dialog.setPanel(server.createPanel(&dialog));
        auto* rate = dialog.findChild<QDoubleSpinBox*>();
        EXPECT_EQ(rate->value(), 12);
        rate->setValue(48);
        accept ? dialog.accept() : dialog.reject();
        EXPECT_EQ(server.fps(), accept ? 48 : 12);
    }
}

} // namespace
