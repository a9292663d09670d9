#pragma once

#include <QListWidget>

class QLabel;
class QProgressBar;

namespace Zph::Applications::Player {

/// The page of the export dialog that tells of the export under way and lists its files.
class ProgressPage : public QWidget
{
    Q_OBJECT

public:
    explicit ProgressPage(QWidget* parent = nullptr);

    /// Forgets the files of the export before.
    void clear();
    void setText(const QString& text);
    /// 0 to 1 of the work.
    void setDone(double share);
    void addResult(const QString& path);
    /// The file that an entry of the list stands for.
    static QString pathOf(const QListWidgetItem& result);

signals:
    void resultActivated(QListWidgetItem* result);

private:
    QLabel* m_text;
    QProgressBar* m_bar;
    QListWidget* m_results;
};

} // namespace Zph::Applications::Player
