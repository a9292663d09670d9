#pragma once

#include "applications/player/images/imageoptions.h"
#include "applications/player/images/imagesequence.h"
#include "applications/player/tweaks/tweakbase.h"

#include <memory>

class QToolButton;

namespace Zph::Applications::Player {

class FileButton;
class ImageInput;
class ImageServerBase;
class PictureThumbnail;

// A picture of a file, or of a numbered sequence that follows the timeline, and how it fits its place.
//
// What the engine was given is never changed: every change makes another record, which takes the place of the
// one before when the engine hears of it. So a file that changes in the midst of a generation, which runs the
// timers and with them this row, takes no pixel from under the engine.
//
// A picture, or a folder of frames, can be dropped on the row; it has the property "dropTarget" while one is
// held over it, for the style sheet.
class TweakImage : public TweakBase
{
    Q_OBJECT

public:
    TweakImage(const TweakContext& context, QWidget* parent);
    ~TweakImage() override;

    // Takes the picture of a file. When no factory of image servers can make something of it, a box says so,
    // the picture of before stays and the result is false. May ask whether it is a sequence.
    bool open(const QString& path);
    // Absolute; empty without a picture.
    const QString& filePath() const { return m_filePath; }

    bool isImage() const override { return true; }
    bool isTimeDependent() const override;
    bool isDefault() const override { return m_filePath.isEmpty(); }
    void resetToDefault() override;
    void applyToEngine(InputSink& engine) override;

public slots:
    void browseFile();
    void optionsSlot();
    // Takes what the server shows now.
    void updateCurrentImage();
    void setTimeChanged(float time) override;

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;
    void nameWidgets() override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void updateMissing();
    void setDropTarget(bool isTarget);

    FileButton* m_fileButton;
    QToolButton* m_optionsButton;
    PictureThumbnail* m_thumbnail;
    std::shared_ptr<ImageInput> m_imageInput;
    std::unique_ptr<ImageServerBase> m_server; // null without a picture
    TimeClamping m_clamping = TimeClamping::Clamp;
    ImageOptions m_options;
    QString m_filePath;
};

} // namespace Zph::Applications::Player
