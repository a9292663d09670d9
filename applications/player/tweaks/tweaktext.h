#pragma once

#include "applications/player/tweaks/tweakbase.h"

#include <vector>

class QTextEdit;

namespace Zph::Applications::Player {

// A text. The engine is given its UTF-16 units as 32-bit numbers, closed by a zero.
class TweakText : public TweakBase
{
    Q_OBJECT

public:
    TweakText(const TweakContext& context, QWidget* parent);

    QString text() const;
    // Writes a text as the user would.
    void setText(const QString& text);

    bool isDefault() const override;
    void applyToEngine(InputSink& engine) override;
    void resetToDefault() override;

public slots:
    virtual void textUpdated();

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    QTextEdit* m_textEdit;
    QString m_defaultText;
    std::vector<quint32> m_units;
};

} // namespace Zph::Applications::Player
