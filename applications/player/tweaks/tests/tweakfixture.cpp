#include "applications/player/tweaks/tests/tweakfixture.h"

#include "applications/player/description/descriptionfile.h"
#include "applications/player/tweaks/tweakkind.h"

#include <gtest/gtest.h>

namespace Zph::Applications::Player {

bool RecordingEngine::pushInput(int index, quint32 type, const void* value)
{
    Call call{index, type, value, {}};
    if (value && componentCount(type) > 0)
        std::memcpy(call.words.words.data(), value, sizeof call.words.words);
    calls.push_back(call);
    return true;
}

bool RecordingEngine::pushImage(int index, std::shared_ptr<ImageSource> source)
{
    images[index] = std::move(source);
    return true;
}

Row::Row(quint32 type, const QByteArray& inputXml, const InputValue& defaultValue,
         const TweakContext& context)
{
    const QDomElement element = parsed(inputXml).documentElement();
    tweak.reset(makeTweak(type, widgetCodeOfInput(element), context, nullptr));
    if (!tweak)
        return;
    QObject::connect(tweak.get(), &TweakBase::tweakChangedSignal,
                     [this](int index) { changes.push_back(index); });
    tweak->setPinned(false);
    tweak->initFromDescription(3, {42, type, defaultValue.words.data()}, element);
}

QDomDocument parsed(const QByteArray& xml)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(xml.isEmpty() || parseDescription(xml, document, &error)) << error.toStdString();
    return document;
}

PackageModel package(const std::vector<VellorInputDesc>& inputs, const QByteArray& xml)
{
    return PackageModel(inputs, {}, parsed(xml));
}

} // namespace Zph::Applications::Player
