#include "applications/player/session/tests/fakelibraries.h"

#include <QVector>

#include <vellor/cooker.h>
#include <vellor/linker.h>

using Zph::Applications::Player::Tests::FakeLibraries;

FakeLibraries& FakeLibraries::instance()
{
    static FakeLibraries fake;
    return fake;
}

namespace {

uint32_t called(const char* name, const QString& arguments = {})
{
    FakeLibraries& fake = FakeLibraries::instance();
    fake.calls.append(arguments.isEmpty() ? QString(name) : name + QString(' ') + arguments);
    return fake.failingCall == name ? fake.code : 0;
}

template<typename Handle> uint32_t made(const char* name, const QString& arguments, Handle** handle)
{
    static char place; // never looked into: the address is all that counts
    const uint32_t result = called(name, arguments);
    *handle = result ? nullptr : reinterpret_cast<Handle*>(&place);
    return result;
}

VellorLinkerMessageCallback linkerMessage;
VellorLinkerXmlCallback linkerXml;
VellorCookerStageCallback cookerStage;
VellorCookerMessageCallback cookerMessage;
VellorLinkerContext* linkerContext;
VellorCookerContext* cookerContext;

template<typename Version> void fillVersion(Version* version)
{
    *version = {};
    version->versionMajor = 1;
    version->versionMinor = 2;
    version->versionPatch = 3;
    version->label = "beta";
    version->date = "May 1";
    version->buildHash = 0xab;
}

} // namespace

void vellorLinkerGetCurrentVersion(VellorLinkerVersion* version)
{
    fillVersion(version);
}

uint32_t vellorLinkerContextInit(VellorLinkerContext** context, uint32_t api, uint32_t engineId)
{
    const uint32_t result = made("Init", QString("%1 %2").arg(api, 0, 16).arg(engineId), context);
    linkerContext = *context;
    return result;
}

uint32_t vellorLinkerContextRelease(VellorLinkerContext*)
{
    return called("ContextRelease");
}

uint32_t vellorLinkerContextSetCallback(VellorLinkerContext*, uint32_t id, VellorFunction callback)
{
    if (id == VELLOR_LINKER_CALLBACK_MESSAGE)
        linkerMessage = reinterpret_cast<VellorLinkerMessageCallback>(callback);
    if (id == VELLOR_LINKER_CALLBACK_XML)
        linkerXml = reinterpret_cast<VellorLinkerXmlCallback>(callback);
    return 0;
}

uint32_t vellorLinkerContextSetOption(VellorLinkerContext*, uint32_t option, uint32_t value)
{
    return called("SetOption", QString("%1 %2").arg(option).arg(value));
}

uint32_t vellorLinkerHandleInit(VellorLinkerHandle** handle, VellorLinkerContext*)
{
    return made("HandleInit", {}, handle);
}

uint32_t vellorLinkerHandleRelease(VellorLinkerHandle*)
{
    return called("HandleRelease");
}

uint32_t vellorLinkerHandlePushAssemblyMemory(VellorLinkerHandle*, const void* data, uint64_t size)
{
    return called("Push", QByteArray(static_cast<const char*>(data), int(size)));
}

uint32_t vellorLinkerHandleLink(VellorLinkerHandle*, const void** data, uint64_t* size)
{
    const FakeLibraries& fake = FakeLibraries::instance();
    if (!fake.message.isEmpty())
        linkerMessage(linkerContext, 1, fake.message);
    for (int i = 0; i < fake.descriptions.size(); ++i)
        linkerXml(linkerContext, i, fake.descriptions[i]);
    *data = "binary";
    *size = 6;
    return called("Link");
}

void vellorCookerGetCurrentVersion(VellorCookerVersion* version)
{
    fillVersion(version);
}

uint32_t vellorCookerContextInit(VellorCookerContext** context, uint32_t api)
{
    const uint32_t result = made("Init", QString::number(api, 16), context);
    cookerContext = *context;
    return result;
}

uint32_t vellorCookerContextRelease(VellorCookerContext*)
{
    return called("ContextRelease");
}

uint32_t vellorCookerContextSetCallback(VellorCookerContext*, uint32_t id, VellorFunction callback)
{
    if (id == VELLOR_COOKER_CALLBACK_STAGE)
        cookerStage = reinterpret_cast<VellorCookerStageCallback>(callback);
    if (id == VELLOR_COOKER_CALLBACK_MESSAGE)
        cookerMessage = reinterpret_cast<VellorCookerMessageCallback>(callback);
    return 0;
}

uint32_t vellorCookerContextSetOption(VellorCookerContext*, uint32_t option, uint32_t value)
{
    return called("SetOption", QString("%1 %2").arg(option).arg(value));
}

uint32_t vellorCookerHandleInit(VellorCookerHandle** handle, VellorCookerContext*)
{
    return made("HandleInit", {}, handle);
}

uint32_t vellorCookerHandleRelease(VellorCookerHandle*)
{
    return called("HandleRelease");
}

uint32_t vellorCookerHandlePushPackageFileW(VellorCookerHandle*, const uint32_t* path)
{
    int length = 0;
    while (path[length])
        ++length;
    return called("Push", QString::fromUcs4(reinterpret_cast<const char32_t*>(path), length));
}

uint32_t vellorCookerHandlePushIncludeDirA(VellorCookerHandle*, const char* alias, const char* path)
{
    return called("Include", QString("%1 %2").arg(alias, path));
}

uint32_t vellorCookerHandleCook(VellorCookerHandle*)
{
    for (const int stage : {0, 1, 2, 3, 4})
        cookerStage(cookerContext, stage);
    if (!FakeLibraries::instance().message.isEmpty())
        cookerMessage(cookerContext, 1, FakeLibraries::instance().message);
    return called("Cook");
}

uint32_t vellorCookerHandleGetAssembly(VellorCookerHandle*, const void** data, uint64_t* size)
{
    *data = "assembly";
    *size = 8;
    return called("GetAssembly");
}

uint32_t vellorCookerHandleGetIODesc(VellorCookerHandle*, const char** xml)
{
    *xml = "<package/>";
    return called("GetIODesc");
}
