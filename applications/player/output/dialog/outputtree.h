#pragma once

#include "applications/player/output/dialog/render.h"

#include <QTreeWidget>

#include <set>

namespace Zph::Applications::Player {

/// An entry of the outputs' tree: the root, a graph, or an output, which alone has a uid.
class Render::TreeItem : public QTreeWidgetItem
{
public:
    TreeItem(QTreeWidgetItem* parent, const QString& text);

    bool isOutput() const { return m_isOutput; }
    quint32 uid() const { return m_uid; }
    void setOutput(quint32 uid);

private:
    quint32 m_uid = 0;
    bool m_isOutput = false;
};

/// The pictures of a package by graphs, each with a box to check.
class OutputTree : public QTreeWidget
{
    Q_OBJECT

public:
    explicit OutputTree(QWidget* parent = nullptr);

    /// All are checked but `disabled`.
    void setPackage(const PackageModel& package, const std::set<quint32>& disabled);
    std::set<quint32> checked() const { return withState(Qt::Checked); }
    std::set<quint32> disabled() const { return withState(Qt::Unchecked); }
    void setDisabled(const std::set<quint32>& disabled);
    /// The output that is current; or else the first.
    const Render::TreeItem* currentOutput() const;

private:
    std::set<quint32> withState(Qt::CheckState state) const;

    QVector<Render::TreeItem*> m_leaves;
};

} // namespace Zph::Applications::Player
