#pragma once

#include "common/engine/backendbase.h"

#include <QMap>
#include <QString>

/// The one engine of the process, and the operations on it.
///
/// There is at most one back end at a time. The operations forward to it; with none, those with a result give
/// NoBackEnd, and the others do nothing. Main thread, save where <vellor/engine.h> allows another.
namespace Zph::Engine {

/// The result of an operation when no engine is loaded.
constexpr uint32_t NoBackEnd = 0xffffffffu;

/// Puts the engine at `path` in the place of the current one, whose handles and contexts are gone already.
/// A library that is not valid leaves none. The result says whether there is one now.
bool load(const QString& path);

/// Drops the current engine, if any.
void unload();

bool isLoaded();

/// Whether the file is an engine. Loads it for the time of the question.
bool probe(const QString& path);

/// The version record of the engine in a file; false if it is none. The texts outlive the library.
bool engineInfo(const QString& path, VellorVersion& version);

/// Puts the engines of a folder (links are not followed) into `engines`, by absolute path.
void scanEngines(const QString& directory, QMap<QString, VellorVersion>& engines);

/// What an engine identifier stands for, translated; empty for an unknown one.
QString engineDescription(uint32_t engineId);

/// "major.minor.patch", with "-label" if there is a label.
QString engineVersionText(const VellorVersion& version);

/// An entry point that an engine may have beside those of <vellor/engine.h>; null when there is none. It
/// lives as long as the engine is loaded.
VellorFunction optionalEntryPoint(const char* symbol);

void getCurrentVersion(VellorVersion* version, uint32_t apiVersion);
uint32_t contextInit(VellorContext** context, VellorDevice* device, uint32_t apiVersion, uint32_t reserved);
void contextRelease(VellorContext* context);
void contextSetCallback(VellorContext* context, uint32_t callbackId, VellorFunction callback);
void contextMemoryFree(VellorContext* context, void* block);
void contextRestoreStates(VellorContext* context);
uint32_t handleInit(VellorHandle** handle, VellorContext* context, const void* data, uint64_t size,
                    const VellorHardResources* resources);
void handleRelease(VellorHandle* handle);
uint32_t handlePushOutputs(VellorHandle* handle, uint32_t flags, const uint32_t* outputs, uint32_t count,
                           void* user);
uint32_t handleFlush(VellorHandle* handle);
uint32_t handleStart(VellorHandle* handle, uint32_t flags);
void handleGetState(VellorHandle* handle, const void* user, uint32_t* state);
uint32_t handleSwitchHard(VellorHandle* handle, uint32_t flags, const VellorHardResources* resources,
                          void* user);
void handleStop(VellorHandle* handle, uint32_t mode);
uint32_t handleGetOutputs(VellorHandle* handle, uint32_t flags, uint32_t outputIndex, uint32_t count,
                          void* out);
uint32_t handlePushSetInput(VellorHandle* handle, uint32_t flags, uint32_t inputIndex, uint32_t inputType,
                            const void* value, void* user);
uint32_t handleGetDesc(VellorHandle* handle, VellorDataDesc* desc);
uint32_t handleGetOutputDesc(VellorHandle* handle, uint32_t outputIndex, VellorOutputDesc* desc);
uint32_t handleGetInputDesc(VellorHandle* handle, uint32_t inputIndex, VellorInputDesc* desc);
uint32_t handleGetInputImageDesc(VellorHandle* handle, uint32_t inputIndex, VellorImageRequest* request);
uint32_t handleSyncSetLabel(VellorHandle* handle, uint32_t label, void* user);
uint32_t handleSyncGetLabel(VellorHandle* handle, uint32_t* label);
uint32_t handleGetParentContext(VellorHandle* handle, VellorContext** context);
uint32_t handleTransferCache(VellorHandle* to, VellorHandle* from, uint32_t flags);

} // namespace Zph::Engine
