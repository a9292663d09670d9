#pragma once

#include "applications/player/packing/packingtemplates.h"

#include <QComboBox>

namespace Zph::Applications::Player {

/// Which packing template an export follows, if any. Templates that can't be read are shown, and can't be
/// chosen.
class PackingTemplateBox : public QComboBox
{
    Q_OBJECT

public:
    explicit PackingTemplateBox(QWidget* parent = nullptr);

    /// Empty for none.
    QString name() const { return currentData().toString(); }
    /// Null for none. Lives as long as the box.
    const PackingTemplate* content() const;
    /// None for a name that there is not.
    void choose(const QString& name);

private:
    PackingTemplates m_templates;
};

} // namespace Zph::Applications::Player
