#include "applications/player/tweaks/tweakimage.h"

#include "applications/player/description/inputsink.h"
#include "applications/player/images/imageinput.h"
#include "applications/player/images/widgets/droppedpicture.h"
#include "applications/player/images/widgets/imagerescale.h"
#include "applications/player/images/widgets/imageserverbase.h"
#include "applications/player/images/widgets/imageserverfactories.h"
#include "applications/player/images/widgets/picturethumbnail.h"
#include "applications/player/session/static.h"
#include "applications/player/tweaks/filebutton.h"
#include "applications/player/tweaks/sharedicon.h"
#include "orncommon/core/settingkey.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPointer>
#include <QStyle>
#include <QTimer>
#include <QToolButton>

namespace Zph::Applications::Player {

namespace {

// The folder of the last picture.
const Orn::Core::SettingKey<QString> imagePathSetting{QStringLiteral("session/tweakImagePath"), {}};

} // namespace

TweakImage::TweakImage(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Image, context, parent), m_fileButton(new FileButton(this)),
      m_optionsButton(new QToolButton(this)), m_thumbnail(new PictureThumbnail(this)),
      m_imageInput(std::make_shared<ImageInput>())
{
    m_optionsButton->setIcon(sharedIcon(QStringLiteral(":/zph/applications/player/images/resize.svg")));
    m_optionsButton->setToolTip(tr("Image options (crop, resize, etc.)."));
    firstRow()->addWidget(m_fileButton, 3);
    firstRow()->addWidget(m_optionsButton, 0, Qt::AlignVCenter); // or its height would be the row's
    connect(m_fileButton, &QPushButton::clicked, this, &TweakImage::browseFile);
    connect(m_optionsButton, &QToolButton::clicked, this, &TweakImage::optionsSlot);
    connect(m_thumbnail, &PictureThumbnail::changed, m_fileButton, [this](QPixmap pixmap) {
        pixmap.setDevicePixelRatio(devicePixelRatioF());
        m_fileButton->setThumbnail(pixmap);
    });
    setAcceptDrops(true);
    updateWidgetFromInput();
    setDirty(true); // without a picture too, the engine has to get one
}

TweakImage::~TweakImage() = default;

bool TweakImage::open(const QString& path)
{
    const QFileInfo file(path);
    imagePathSetting.write(file.absolutePath());
    const QPointer<TweakImage> alive(this); // questions and boxes run the event loop
    std::unique_ptr<ImageServerBase> server;
    if (file.isFile())
        server = createImageServer(file.absoluteFilePath(), this);
    if (!alive)
        return false;
    if (!server) {
        QMessageBox::warning(window(), tr("Error loading bitmap"),
                             tr("Cannot open '%1' file.\nBitmap format not handled.").arg(path));
        return false;
    }
    m_server = std::move(server);
    m_filePath = file.absoluteFilePath();
    connect(m_server.get(), &ImageServerBase::fileChangedNotification, this, &TweakImage::updateCurrentImage);
    connect(m_server.get(), &ImageServerBase::fileLostNotification, this, &TweakImage::updateMissing);
    m_server->requireFrameNotification(Static::instance().timelineTime, m_clamping);
    writeWidgets([this] { updateWidgetFromInput(); });
    onWidgetValue();
    return true;
}

bool TweakImage::isTimeDependent() const
{
    return m_server && m_server->duration() != 0;
}

void TweakImage::resetToDefault()
{
    const bool wasDefault = isDefault();
    m_server.reset();
    m_filePath.clear();
    m_options = ImageOptions();
    writeWidgets([this] { updateWidgetFromInput(); });
    if (!wasDefault)
        onWidgetValue();
}

void TweakImage::applyToEngine(InputSink& engine)
{
    if (!isDirty())
        return;
    engine.pushImage(index(), m_imageInput);
    setDirty(false);
}

void TweakImage::browseFile()
{
    const QPointer<TweakImage> alive(this);
    const QString path = QFileDialog::getOpenFileName(window(), tr("Open input image/animation"),
                                                      imagePathSetting.read(), imageServerFileFilter());
    if (alive && !path.isEmpty())
        open(path);
}

void TweakImage::optionsSlot()
{
    const QPointer<TweakImage> alive(this);
    const QPointer<ImageRescale> dialog(new ImageRescale(m_options, window()));
    if (m_server)
        dialog->setPicture(m_server->surface());
    if (QWidget* panel = m_server ? m_server->createPanel(dialog) : nullptr)
        dialog->setPanel(panel);
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return;
    const ImageOptions options = dialog->options();
    delete dialog;
    if (!alive || !isAccepted)
        return;
    const bool isOtherFrame =
        m_server && m_server->requireFrameNotification(Static::instance().timelineTime, m_clamping);
    const bool isOther = options != m_options;
    m_options = options;
    if (m_server && (isOther || isOtherFrame))
        onWidgetValue();
}

void TweakImage::updateCurrentImage()
{
    onWidgetValue();
}

void TweakImage::setTimeChanged(float time)
{
    if (isTimeDependent() && m_server->requireFrameNotification(time, m_clamping))
        onWidgetValue();
}

void TweakImage::parseInputGui(const QDomElement&)
{
}

void TweakImage::updateInputFromWidget()
{
    ImageServerBase::ImagePtr picture;
    if (m_server)
        m_server->grabFrame(picture);
    m_imageInput = std::make_shared<ImageInput>();
    m_imageInput->setOptions(m_options);
    m_imageInput->setSource(picture);
    setDirty(true);
    m_thumbnail->show(picture, m_options, qRound(FileButton::thumbnailSide * devicePixelRatioF()));
    updateMissing();
}

void TweakImage::updateWidgetFromInput()
{
    m_fileButton->setFileName(m_server ? QFileInfo(m_filePath).fileName() : tr("None [...]"));
    m_fileButton->setToolTip(m_server ? plainToolTip(QDir::toNativeSeparators(m_filePath))
                                      : tr("Open an image or the first one of a sequence."));
    m_fileButton->setThumbnailShown(m_server != nullptr);
    updateMissing();
}

void TweakImage::updateMissing()
{
    m_fileButton->setMissing(m_server && !m_server->isUpToDate());
}

void TweakImage::nameWidgets()
{
    TweakBase::nameWidgets();
    m_optionsButton->setAccessibleName(tr("Image options of '%1'").arg(caption()));
}

void TweakImage::dragEnterEvent(QDragEnterEvent* event)
{
    // What is no picture may still be something for the window.
    event->setAccepted(!droppedPicture(*event->mimeData()).isEmpty());
    setDropTarget(event->isAccepted());
}

void TweakImage::dragLeaveEvent(QDragLeaveEvent*)
{
    setDropTarget(false);
}

void TweakImage::dropEvent(QDropEvent* event)
{
    setDropTarget(false);
    const QString path = droppedPicture(*event->mimeData());
    event->setAccepted(!path.isEmpty());
    // What opens may ask something, which must not hold up whoever the file was dragged from.
    if (!path.isEmpty())
        QTimer::singleShot(0, this, [this, path] { open(path); });
}

void TweakImage::setDropTarget(bool isTarget)
{
    setProperty("dropTarget", isTarget);
    style()->unpolish(this);
    style()->polish(this);
    update();
}

} // namespace Zph::Applications::Player
