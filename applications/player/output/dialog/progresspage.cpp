#include "progresspage.h"

#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace Zph::Applications::Player {

namespace {

constexpr int kSteps = 1000;

} // namespace

ProgressPage::ProgressPage(QWidget* parent) : QWidget(parent)
{
    m_text = new QLabel(this);
    m_bar = new QProgressBar(this);
    m_bar->setAccessibleName(tr("Progress"));
    m_bar->setRange(0, kSteps);
    m_results = new QListWidget(this);
    m_results->setToolTip(tr("Double-click to open result bitmap."));
    m_results->setAccessibleName(tr("Results"));
    connect(m_results, &QListWidget::itemActivated, this, &ProgressPage::resultActivated);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    layout->addWidget(m_results, 1);
}

void ProgressPage::clear()
{
    m_results->clear();
    setDone(0.0);
}

void ProgressPage::setText(const QString& text)
{
    if (m_text->text() != text)
        m_text->setText(text);
}

void ProgressPage::setDone(double share)
{
    m_bar->setValue(int(kSteps * share));
}

void ProgressPage::addResult(const QString& path)
{
    auto* item = new QListWidgetItem(QFileInfo(path).fileName(), m_results);
    item->setData(Qt::UserRole, path);
    m_results->scrollToItem(item);
}

QString ProgressPage::pathOf(const QListWidgetItem& result)
{
    return result.data(Qt::UserRole).toString();
}

} // namespace Zph::Applications::Player
