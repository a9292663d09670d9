#pragma once

#include <QDialog>

class QTextEdit;

namespace Zph::Applications::Player {

/// The window's error console: what the cooker, the linker and the loading steps say, in colours by level.
/// Every message shows the console if it is hidden; stage lines don't.
class ErrorConsole : public QDialog
{
    Q_OBJECT

public:
    explicit ErrorConsole(QWidget* parent);

    void clear();
    /// Levels as PackageListener tells them.
    void message(int level, const QString& text);
    /// A line that tells how far the work has come.
    void stage(const QString& text);

    QString text() const;

private:
    void append(const QColor& colour, const QString& text);

    QTextEdit* m_text;
};

} // namespace Zph::Applications::Player
