#include "outputtree.h"

#include "applications/player/description/packagemodel.h"
#include "applications/player/description/valuetype.h"

#include <QHeaderView>
#include <QSignalBlocker>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

constexpr int kUsageColumn = 1;

/// What a graph goes by: its label, and what tells it from others of this label.
QString graphText(const PackageGraph& graph)
{
    const QString url = QString(graph.key).remove(QStringLiteral("pkg://"));
    if (graph.label.isEmpty() || graph.label == graph.key || graph.label == url)
        return url;
    return graph.label + QStringLiteral(" (%1)").arg(url);
}

} // namespace

Render::TreeItem::TreeItem(QTreeWidgetItem* parent, const QString& text)
    : QTreeWidgetItem(parent, QStringList(text))
{
    setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate);
    setCheckState(0, Qt::Checked);
}

void Render::TreeItem::setOutput(quint32 uid)
{
    m_uid = uid;
    m_isOutput = true;
    setFlags(flags() & ~Qt::ItemIsAutoTristate);
}

OutputTree::OutputTree(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(2);
    setHeaderHidden(true);
    header()->setStretchLastSection(true);
    header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    setUniformRowHeights(true);
    setExpandsOnDoubleClick(false);
}

void OutputTree::setPackage(const PackageModel& package, const std::set<quint32>& disabled)
{
    const QSignalBlocker blocker(this);
    clear();
    m_leaves.clear();
    auto* root = new Render::TreeItem(nullptr, tr("All outputs"));
    addTopLevelItem(root);
    for (const PackageGraph& graph : package.graphs()) {
        Render::TreeItem* node = nullptr;
        for (const PackageOutput& output : package.outputsOfGraph(graph.key)) {
            if (componentCount(output.type) > 0)
                continue; // a number
            if (!node)
                node = new Render::TreeItem(root, graphText(graph));
            auto* leaf = new Render::TreeItem(node, output.label);
            leaf->setOutput(output.uid);
            leaf->setText(kUsageColumn, output.usages.join(QStringLiteral(", ")));
            leaf->setForeground(kUsageColumn, palette().color(QPalette::Disabled, QPalette::Text));
            leaf->setToolTip(0, output.listText);
            m_leaves.append(leaf);
        }
    }
    setDisabled(disabled);
    expandAll();
    setCurrentItem(root);
}

std::set<quint32> OutputTree::withState(Qt::CheckState state) const
{
    std::set<quint32> uids;
    for (const Render::TreeItem* leaf : m_leaves)
        if (leaf->checkState(0) == state)
            uids.insert(leaf->uid());
    return uids;
}

void OutputTree::setDisabled(const std::set<quint32>& disabled)
{
    for (Render::TreeItem* leaf : qAsConst(m_leaves))
        leaf->setCheckState(0, disabled.count(leaf->uid()) > 0 ? Qt::Unchecked : Qt::Checked);
}

const Render::TreeItem* OutputTree::currentOutput() const
{
    const auto* current = static_cast<const Render::TreeItem*>(currentItem());
    if (current && current->isOutput())
        return current;
    const auto checked = std::find_if(m_leaves.begin(), m_leaves.end(), [](const Render::TreeItem* leaf) {
        return leaf->checkState(0) == Qt::Checked;
    });
    return checked == m_leaves.end() ? nullptr : *checked;
}

} // namespace Zph::Applications::Player
