#include "packingtemplatebox.h"

#include <algorithm>

namespace Zph::Applications::Player {

PackingTemplateBox::PackingTemplateBox(QWidget* parent) : QComboBox(parent)
{
    setToolTip(tr("Which channels of which outputs go into which files."));
    addItem(tr("None (each output is a file)"));
    for (const PackingTemplates::Entry& entry : m_templates.entries()) {
        addItem(entry.shownName(), entry.name);
        const int row = count() - 1;
        setItemData(row, entry.content ? entry.content->description : entry.error, Qt::ToolTipRole);
        if (!entry.content)
            setItemData(row, 0, Qt::UserRole - 1); // no flags: can't be chosen
    }
}

const PackingTemplate* PackingTemplateBox::content() const
{
    const PackingTemplates::Entry* entry = m_templates.find(name());
    return entry && entry->content ? &*entry->content : nullptr;
}

void PackingTemplateBox::choose(const QString& name)
{
    setCurrentIndex(std::max(findData(name), 0));
}

} // namespace Zph::Applications::Player
