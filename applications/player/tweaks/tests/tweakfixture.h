#pragma once

#include "applications/player/description/inputsink.h"
#include "applications/player/description/packagemodel.h"
#include "applications/player/tweaks/tweakbase.h"

#include <QComboBox>
#include <QDial>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTextEdit>
#include <QToolButton>

#include <map>
#include <memory>
#include <vector>

namespace Zph::Applications::Player {

// An engine that writes down what it is told.
struct RecordingEngine : InputSink
{
    struct Call
    {
        int index;
        quint32 type;
        const void* value;
        InputValue words;
    };
    bool pushInput(int index, quint32 type, const void* value) override;
    bool pushImage(int index, std::shared_ptr<ImageSource> source) override;
    std::vector<Call> calls;
    std::map<int, std::shared_ptr<ImageSource>> images; // by input index
};

// One row, made the way the panel makes it, with the changes that it told of.
struct Row
{
    Row(quint32 type, const QByteArray& inputXml, const InputValue& defaultValue = {},
        const TweakContext& context = {});

    template<class Widget> Widget* find(int i = 0) const
    {
        return tweak->findChildren<Widget*>(QString(), Qt::FindDirectChildrenOnly).value(i);
    }
    template<class Kind> Kind* as() const { return qobject_cast<Kind*>(tweak.get()); }
    float number() const { return tweak->value().floatAt(0); }
    int integer() const { return tweak->value().intAt(0); }
    QString labelText(int i) const { return find<QLabel>(i)->text(); }

    std::unique_ptr<TweakBase> tweak; // null when the input gets no row
    std::vector<int> changes;
};

QDomDocument parsed(const QByteArray& xml);

// A package of engine inputs under a description; the defaults are 0.
PackageModel package(const std::vector<VellorInputDesc>& inputs, const QByteArray& xml);

} // namespace Zph::Applications::Player
