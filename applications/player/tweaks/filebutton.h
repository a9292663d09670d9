#pragma once

#include <QPushButton>

namespace Zph::Applications::Player {

// A button that names a file, shortened in its middle to the room that there is. The names of files leave the
// layout as it is.
class FileButton : public QPushButton
{
    Q_OBJECT

public:
    explicit FileButton(QWidget* parent);

    // Shown as it is, with every "&".
    void setFileName(const QString& name);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_fileName;
};

} // namespace Zph::Applications::Player
