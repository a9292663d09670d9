#include "orncommon/gui/aboutdialog.h"

#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

namespace Orn::Gui {

namespace {

QLabel* makeLabel(const char* objectName, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(QLatin1String(objectName));
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setVisible(!text.isEmpty());
    return label;
}

} // namespace

AboutDialog::AboutDialog(const QPixmap& picture, const Texts& texts, QWidget* parent) : QDialog(parent)
{
    // The picture lies behind the pane, whose margin in the style sheet leaves it free.
    auto* pictureLabel = new QLabel(this);
    pictureLabel->setPixmap(picture);
    pictureLabel->adjustSize();

    auto* pane = new QFrame(this);
    pane->setObjectName(QStringLiteral("pane"));
    pane->setFrameShape(QFrame::StyledPanel);
    auto* content = new QVBoxLayout(pane);
    content->setSpacing(10);
    content->addWidget(makeLabel("about-title", texts.title, pane));
    content->addWidget(makeLabel("about-subtitle", texts.subtitle, pane));
    content->addWidget(makeLabel("about-details", texts.details, pane));
    content->addStretch(1);
    // The style sheets of this family spell the name so.
    content->addWidget(makeLabel("about-disclamer", texts.disclaimer, pane));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, pane);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    content->addWidget(buttons);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pane);
}

} // namespace Orn::Gui
